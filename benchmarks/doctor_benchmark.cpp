// What examining a machine without the volume manager costs, as text and as JSON: reading the names
// of its block devices, looking for lost paths, comparing the names with the kernel's devices, and
// writing all that. Fails when a run takes more than three seconds of processor time, or more than
// 96 MiB of memory.
#include "benchmarks/many_disks.h"
#include "benchmarks/peak_memory.h"
#include "doctor/examination.h"
#include "doctor/findings.h"
#include "doctor/report.h"
#include "tests/support/descriptor.h"

namespace {

using namespace command;

void examineAsText(ExaminationOrder& order, const std::vector<Module>& modules,
                   OutputStream& output)
{
    Findings findings({}, Findings::Use::text, output);
    examine(order, modules, std::make_shared<StopRequest>(),
            [&](const Finding& finding) { findings.take(finding); });
}

void examineAsJson(ExaminationOrder& order, const std::vector<Module>& modules,
                   OutputStream& output)
{
    Findings findings({}, Findings::Use::keep, output);
    ReportWriter document(output, modules);
    order.takeName = [&](const Explanation& name) { document.addName(name); };
    const Report report = examine(order, modules, std::make_shared<StopRequest>(),
                                  [&](const Finding& finding) { findings.take(finding); });
    document.finish(report, findings.kept());
}

using Examine = void (*)(ExaminationOrder&, const std::vector<Module>&, OutputStream&);

void compareSizes(const std::string& name, Examine examine)
{
    constexpr double mostSeconds = 3;
    const std::vector<Module> modules = makeModules({});
    const Descriptor nowhere = openFile("/dev/null", O_WRONLY);
    OutputStream output(nowhere.number());
    compareMachines(name, [&](const ManyDisks& machine) {
        ExaminationOrder order;
        order.roots = machine.roots();
        order.showProgress = [](const std::string&) {};
        const double begin = secondsOf(CLOCK_THREAD_CPUTIME_ID);
        examine(order, modules, output);
        if (secondsOf(CLOCK_THREAD_CPUTIME_ID) - begin > mostSeconds)
            throw std::runtime_error(name + ": more than 3 s of processor time");
    });
}

} // namespace

int main()
{
    compareSizes("doctor with so many disks", examineAsText);
    compareSizes("doctor -J with so many disks", examineAsJson);
    expectPeakMemory(96);
}
