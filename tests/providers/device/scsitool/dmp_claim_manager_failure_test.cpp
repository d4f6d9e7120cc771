// The modules and the manager when the trace log throws or memory runs out, at each point of each
// operation.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gmock/gmock.h>

#include <limits>
#include <new>
#include <stdexcept>

#include "tests/support/allocation_probe.h"
#include "tests/support/built_in_modules.h"
#include "tests/support/names_model.h"
#include "tests/support/operations.h"
#include "tests/support/recording_log.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::CZeTraceSinkHandle;
using testing::Contains;
using testing::IsEmpty;

namespace {

using Lines = std::vector<Line>;

bool begins(const Line& line, const std::string& word)
{
    return line.text.rfind(word, 0) == 0;
}

/// The lines of an operation that an exception ends instead of line number `number`: the lines
/// before it, then the exiting lines of the functions that were entered.
Lines unwoundAt(const Lines& lines, std::size_t number)
{
    Lines unwound(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(number));
    Lines open;
    for (const Line& line : unwound) {
        if (begins(line, "Entering"))
            open.push_back({6, "Exiting" + line.text.substr(8)});
        else if (begins(line, "Exiting"))
            open.pop_back();
    }
    unwound.insert(unwound.end(), open.rbegin(), open.rend());
    return unwound;
}

Lines without(Lines lines, std::size_t number)
{
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(number));
    return lines;
}

/// What only the manager has.
std::vector<Operation> ownOperationsOf(CDmpClaimManager& manager, const std::string& device)
{
    return {{"getClaimModule", [&manager, device] {
                 CDmpDeviceClaimBase* owner = nullptr;
                 manager.getClaimModule(owner, device);
             }}};
}

/// What only modules have. A native path's active path is asked for without the volume manager.
std::vector<Operation> ownOperationsOf(CDmpDeviceClaimBase& module, const std::string& device)
{
    return {{"getActivePath", [&module, device] { module.getActivePath(device, true); }},
            {"isRawDevice", [&module, device] { module.isRawDevice(device); }},
            {"removeDevPrefix", [&module, device] { module.removeDevPrefix(device); }}};
}

/// Whether the operation leaves by an Exception.
template <class Exception>
bool throws(const Operation& operation)
{
    try {
        operation.call();
    } catch (const Exception&) {
        return true;
    }
    return false;
}

template <class Module>
class Failure : public testing::Test {
protected:
    Failure()
    {
        m_log->setSink(m_sink);
        m_module.registerTraceLog(m_log);
    }

    std::vector<Operation> operations()
    {
        std::vector<Operation> all;
        for (const std::string& device : model::partitions) {
            for (Operation& operation : operationsOf(m_module, device))
                all.push_back(std::move(operation));
            for (Operation& operation : ownOperationsOf(m_module, device))
                all.push_back(std::move(operation));
        }
        return all;
    }

    /// The lines of a call that does not fail.
    Lines linesOf(const Operation& operation)
    {
        operation.call();
        return takeLines();
    }

    Lines takeLines() { return std::exchange(m_lines, {}); }

    /// Lets the log throw at line `number` of a call.
    void checkThrowing(std::size_t number, const Operation& operation, const Lines& lines)
    {
        const std::int32_t count = m_log->getCount();
        const bool exiting = begins(lines[number], "Exiting");
        m_throwing = number;
        EXPECT_EQ(throws<std::runtime_error>(operation), !exiting);
        EXPECT_EQ(takeLines(), exiting ? without(lines, number) : unwoundAt(lines, number));
        EXPECT_EQ(m_log->getCount(), count);
    }

    /// Lets allocation number `failing` of a call fail. Checks that the call ended there, or that
    /// it was the allocation of a trace line and only this line is lost. Returns false when the
    /// call makes fewer allocations.
    bool checkWithout(std::size_t failing, const Operation& operation, const Lines& lines)
    {
        const std::uint64_t dropped = m_sink->dropped();
        const AllocationProbe probe(failing);
        const bool threw = throws<std::bad_alloc>(operation);
        const AllocationProbe::Pause pause;
        EXPECT_THAT(probe.living(), IsEmpty());
        EXPECT_EQ(m_sink->dropped() - dropped, probe.failed() && !threw ? 1U : 0U);
        const Lines seen = takeLines();
        if (!probe.failed())
            return false;
        std::vector<Lines> endings(lines.empty() ? 1 : 0);
        for (std::size_t number = 0; number < lines.size(); ++number)
            endings.push_back(threw ? unwoundAt(lines, number) : without(lines, number));
        EXPECT_THAT(endings, Contains(seen));
        m_everThrew = m_everThrew || threw;
        return true;
    }

    CZeTraceLogHandle m_log = new CZeTraceLog;
    bool m_everThrew = false;

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    void keep(int level, std::string_view text)
    {
        const AllocationProbe::Pause pause;
        if (std::exchange(m_throwing, m_throwing - 1) == 0)
            throw std::runtime_error("log");
        m_lines.push_back({level, std::string(text)});
    }

    Lines m_lines;
    std::size_t m_throwing = none; ///< lines to come before the one that throws
    CZeTraceSinkHandle m_sink =
        new CZeTraceCallbackSink(CZeTraceCallbackSink::everything,
                                 [this](int level, std::string_view text) { keep(level, text); });
    Module m_module;
};

TYPED_TEST_SUITE(Failure, BuiltInModulesAnd<CDmpClaimManager>);

TYPED_TEST(Failure, OfTheLogPassesUnlessItIsAnExitingLine)
{
    for (const Operation& operation : this->operations()) {
        SCOPED_TRACE(operation.name);
        const Lines lines = this->linesOf(operation);
        for (std::size_t number = 0; number < lines.size(); ++number)
            this->checkThrowing(number, operation, lines);
    }
}

TYPED_TEST(Failure, OfMemoryPassesAfterTheExitingLinesAndLeaksNothing)
{
    const std::int32_t count = this->m_log->getCount();
    for (const Operation& operation : this->operations()) {
        SCOPED_TRACE(operation.name);
        const Lines lines = this->linesOf(operation);
        this->m_everThrew = false;
        for (std::size_t failing = 1; this->checkWithout(failing, operation, lines); ++failing)
            EXPECT_EQ(this->m_log->getCount(), count);
        EXPECT_TRUE(this->m_everThrew);
    }
}

} // namespace
