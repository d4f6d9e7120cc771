#include "doctor/doctor.h"

#include <optional>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/wanted_paths.h"
#include "doctor/device_checks.h"
#include "doctor/finding_output.h"
#include "doctor/findings.h"
#include "doctor/report.h"
#include "doctor/tool_checks.h"
#include "doctor/trace_recorder.h"
#include "interrupt/interrupt.h"
#include "interrupt/start_thread.h"
#include "kernel/block_devices.h"
#include "output/json_output.h"

using koze_pdk_4_4::CZeTraceLogHandle;

namespace command {

namespace {

constexpr char footer[] =
    R"(Looks at the volume manager's tools and asks them about every native disk, or
the PATHs; asking changes nothing. Then it holds the names in /dev against the
kernel's devices. A tool that takes more than 30 seconds, or prints too much, is
ended and not asked again. Commands in findings are quoted for a shell (bash,
zsh, ksh).

Every finding has a state: ok, note (good to know), warning (an answer may be
wrong) or error (it is wrong, or none is given), and says what to do, if
anything. A disk that the volume manager does not hold is a warning: a machine
with such disks is watched by naming the others. A PATH that does not exist is a
warning, too, and one that is no block device an error. JSON holds besides what
somebody who helps from afar needs: versions, modules (in the order in which
they are asked), names, maps (of the kernel's device-mapper), commands (what the
tools answered; for the status see 'dmpclaim active --help') and trace.

Exit status:
   0  nothing is wrong
  64  there are warnings
  32  there are errors

An interrupt (SIGINT, SIGTERM, SIGHUP, SIGQUIT) ends the tool that runs, and the
command with status 130, 143, 129 or 131.

-J, --trace and the statuses 1 and 2: see 'dmpclaim --help'.)";

class Doctor {
public:
    /// `report` receives names and commands; null when they are not wanted, so that they take no
    /// memory.
    Doctor(const Options& options, CZeTraceLogHandle log, StopRequest& stop,
           const std::vector<Module>& modules, FindingReceiver receiver, Report* report)
        : m_options(options), m_receiver(std::move(receiver)), m_modules(modules), m_report(report),
          m_tools(log, stop, m_receiver, report == nullptr ? nullptr : &report->commands)
    {
        m_manager.registerTraceLog(log);
    }

    void runChecks()
    {
        const SystemPaths system;
        readNames(system);
        m_tools.checkTools();
        if (m_options.paths.empty())
            askAboutAll();
        else
            askAboutGiven();
        checkDevices(system, m_readings, m_given, m_receiver);
    }

private:
    void readNames(const SystemPaths& system)
    {
        for (const std::string& path : blockDevices(system.sysfsBlock, system.dev)) {
            Explanation name = explanation(m_manager, m_modules, path);
            m_readings.push_back(deviceReading(name));
            if (m_report != nullptr)
                m_report->names.push_back(std::move(name));
        }
    }

    void askAboutAll()
    {
        for (const DeviceReading& reading : m_readings) {
            if (reading.owner != nullptr && reading.owner->asksTools && !reading.isPartition)
                m_tools.checkDisk(reading.path);
        }
    }

    void askAboutGiven()
    {
        PathSource paths = wantedPaths(m_options, [] {});
        while (const std::optional<std::string> path = paths.next()) {
            m_given.push_back(*path);
            const Driver* owner = deviceAnswer(m_manager, *path).owner;
            if (owner != nullptr && owner->asksTools)
                m_tools.checkDisk(*path);
            else
                m_receiver({Finding::State::note, *path,
                            "no native path: the volume manager is not asked about it"});
        }
    }

    const Options& m_options;
    FindingReceiver m_receiver;
    CDmpClaimManager m_manager;
    const std::vector<Module>& m_modules;
    Report* m_report;
    ToolChecks m_tools;
    std::vector<DeviceReading> m_readings;
    std::vector<std::string> m_given;
};

int exitStatus(const FindingCounts& counts)
{
    if (counts.count(Finding::State::error) > 0)
        return 32;
    return counts.count(Finding::State::warning) > 0 ? 64 : 0;
}

int run(const Options& options, OutputStream& output)
{
    const bool isJson = options.form == Form::json;
    const std::vector<Module> modules = makeModules({});
    Report report{modules, {}, {}, {}, {}, {}};
    std::optional<TraceRecorder> trace;
    if (isJson)
        trace.emplace(openTraceSink(options.trace));
    const CZeTraceLogHandle log = trace ? trace->openLog() : openTraceLog(options.trace);
    Findings findings(isJson ? nullptr : &output);
    StopRequest stop;
    Interrupt interrupt(stop, [] {});
    Doctor doctor(
        options, log, stop, modules, [&](const Finding& finding) { findings.take(finding); },
        isJson ? &report : nullptr);
    try {
        runInThread([&] { doctor.runChecks(); }); // Interrupt requires this
    } catch (const Interrupted&) {
        // The signal thread exits the process.
    }
    interrupt.finish();
    if (isJson) {
        report.maps = kernelMaps(SystemPaths().sysfsBlock);
        report.findings = findings.documents();
        report.trace = trace->lines();
        output.write(jsonText(reportDocument(report)));
    } else {
        output.write(summary(findings.counts()));
    }
    output.flush();
    return exitStatus(findings.counts());
}

} // namespace

Subcommand doctorSubcommand()
{
    return {"doctor", "Tell what is wrong on this machine, and what to do",
            footer,   Arguments::optionalPaths,
            {},       Form::text,
            nullptr,  run};
}

} // namespace command
