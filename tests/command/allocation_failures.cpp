#include "tests/command/allocation_failures.h"

#include <cstring>
#include <iostream>
#include <new>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "files/names_in.h"
#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "tests/command/output/captured_output.h"
#include "tests/support/allocation_probe.h"
#include "tests/support/open_descriptors.h"

namespace {

/// Waits for threads that the operation has detached.
void awaitThreads()
{
    while (command::namesIn("/proc/self/task").size() > 1)
        std::this_thread::yield();
}

/// Whether the block begins as an object of the class does: with its virtual functions.
template <class Module>
bool isA(const void* block)
{
    const Module module;
    return std::memcmp(block, static_cast<const void*>(&module), sizeof(void*)) == 0;
}

void deleteModule(void* block)
{
    if (isA<CNativePathClaim>(block) || isA<CDmpPowerPathClaim>(block) ||
        isA<CDmpDeviceMapperClaim>(block))
        delete static_cast<CDmpDeviceClaimBase*>(block);
    else
        ADD_FAILURE() << "a block leaks";
}

} // namespace

AllocationFailures::AllocationFailures(Operation operation, Part part)
    : m_operation(std::move(operation)), m_part(std::move(part))
{
    CapturedOutput output;
    m_operation(output.stream()); // fills what is kept for the life of the process
    m_whole = m_part(output.text());
}

std::size_t AllocationFailures::failEach() const
{
    const std::set<std::string> descriptors = openDescriptors();
    testing::internal::CaptureStderr(); // complaints come again and again
    std::size_t failures = 0;
    while (failsAt(failures + 1))
        ++failures;
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(openDescriptors(), descriptors);
    std::cout << failures << " failed allocations\n";
    return failures;
}

bool AllocationFailures::failsAt(std::size_t number) const
{
    std::optional<CapturedOutput> output(std::in_place);
    bool hasEnded = false;
    const AllocationProbe probe(number);
    try {
        m_operation(output->stream());
        hasEnded = true;
    } catch (const std::bad_alloc&) {
        EXPECT_TRUE(probe.failed()) << number;
    }
    const AllocationProbe::Pause pause;
    awaitThreads();
    if (hasEnded) {
        EXPECT_EQ(m_part(output->text()), m_whole) << number;
    }
    output.reset();
    for (void* block : probe.living())
        deleteModule(block);
    return probe.failed();
}
