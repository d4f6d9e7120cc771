// Each allocation of `dmpclaim doctor` fails once: of the examination, of each form of its result,
// and of the questions to the volume manager's tools.
#include <gtest/gtest.h>

#include <sstream>

#include "doctor/check_line.h"
#include "doctor/disk_inquiry.h"
#include "doctor/examination.h"
#include "doctor/findings.h"
#include "doctor/metrics.h"
#include "doctor/report.h"
#include "tests/command/allocation_failures.h"
#include "tests/support/made_up_machine.h"
#include "tests/support/replaced_runner.h"

static int resultOf(const std::string& /*command*/, std::vector<std::string>& output)
{
    output = {"NAME STATE TYPE", "====", "a-name-that-takes-memory ENABLED(A)"};
    return 0;
}

namespace {

using namespace command;

/// The document without the lines that change: the time, and the name of this machine's system,
/// which is null when it cannot be read.
std::string lasting(const std::string& document)
{
    std::string kept;
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("\"recorded\":") == std::string::npos &&
            line.find("\"system\":") == std::string::npos)
            kept += line + '\n';
    }
    return kept;
}

class DoctorAllocations : public testing::Test {
protected:
    DoctorAllocations()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda"});
    }

    ExaminationOrder order() const
    {
        ExaminationOrder order;
        order.showProgress = [](const std::string&) {};
        order.roots = m_made.roots();
        return order;
    }

    MadeUpMachine m_made;
    const std::shared_ptr<StopRequest> m_stop = std::make_shared<StopRequest>();
};

TEST_F(DoctorAllocations, OfTextFailOneByOne)
{
    const AllocationFailures text([&](OutputStream& output) {
        Findings findings({}, Findings::Use::text, output);
        examine(order(), makeModules({}), m_stop,
                [&](const Finding& finding) { findings.take(finding); });
    });
    EXPECT_GE(text.failEach(), 300U);
}

TEST_F(DoctorAllocations, OfJsonFailOneByOne)
{
    const AllocationFailures json(
        [&](OutputStream& output) {
            const std::vector<Module> modules = makeModules({});
            Findings findings({}, Findings::Use::keep, output);
            ReportWriter document(output, modules);
            ExaminationOrder withNames = order();
            withNames.takeName = [&](const Explanation& name) { document.addName(name); };
            const Report report = examine(withNames, modules, m_stop,
                                          [&](const Finding& finding) { findings.take(finding); });
            document.finish(report, findings.kept());
        },
        lasting);
    EXPECT_GE(json.failEach(), 350U);
}

TEST_F(DoctorAllocations, OfMonitoringFailOneByOne)
{
    const AllocationFailures monitoring([&](OutputStream& output) {
        Findings findings({}, Findings::Use::keep, output);
        Report report = examine(order(), makeModules({}), m_stop,
                                [&](const Finding& finding) { findings.take(finding); });
        report.duration = {};
        output.write(checkResult(report, findings.kept()).line);
        output.write(metricsText(report, findings.kept(), 0));
    });
    EXPECT_GE(monitoring.failEach(), 700U);
}

TEST_F(DoctorAllocations, OfTheQuestionsToToolsFailOneByOne)
{
    for (const bool forReport : {false, true}) {
        const AllocationFailures inquiry([&](OutputStream& output) {
            InquiryOptions options;
            options.jobs = 2;
            options.forReport = forReport;
            for (const DiskAnswer& answer :
                 askAboutDisks({"/dev/sda", "/dev/sdb"}, options, m_stop))
                output.write(answer.path);
        });
        EXPECT_GE(inquiry.failEach(), 45U);
    }
}

} // namespace
