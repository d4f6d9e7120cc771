#include "doctor/doctor.h"

#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "block_devices.h"
#include "device_row.h"
#include "doctor/device_examination.h"
#include "doctor/device_reading.h"
#include "doctor/finding_output.h"
#include "doctor/findings.h"
#include "doctor/kernel_maps.h"
#include "doctor/tool_examination.h"
#include "doctor/trace_recorder.h"
#include "doctor/versions.h"
#include "drivers.h"
#include "explanation.h"
#include "interrupt.h"
#include "json_output.h"
#include "start_thread.h"
#include "trace.h"
#include "wanted_paths.h"

using namespace command;
using namespace koze_pdk_4_4;

namespace {

/// Local time with its zone:  2026-11-21T16:05:07+0100
std::string now()
{
    const std::time_t time = std::time(nullptr);
    std::tm local{};
    localtime_r(&time, &local);
    char text[64];
    return {text, std::strftime(text, sizeof text, "%FT%T%z", &local)};
}

class Doctor {
public:
    Doctor(const Options& options, CZeTraceLogHandle log, StopRequest& stop, Findings& findings)
        : m_options(options), m_receiver([&](const Finding& finding) { findings.take(finding); }),
          m_modules(makeModules({})), m_isRecorded(options.form == Form::json),
          m_tools(log, stop, m_receiver, m_isRecorded ? &m_commands : nullptr)
    {
        m_manager.registerTraceLog(log);
    }

    void examine()
    {
        const Places places;
        readNames(places);
        m_tools.examineTools();
        if (m_options.paths.empty())
            askAboutAll();
        else
            askAboutGiven();
        examineDevices(places, m_readings, m_given, m_receiver);
    }

    /// What a support engineer asks for, but for findings and trace. REQUIRES: JSON is wanted; for
    /// text names and commands are not kept.
    Row report() const
    {
        Row modules = Row::array();
        for (const auto& module : m_modules)
            modules.push_back({{"module", driverName(module.get())},
                               {"prefixes", module->getDeviceClaimStrings()}});
        Row maps = Row::array();
        for (const KernelMap& map : kernelMaps(Places().sysfsBlock))
            maps.push_back({{"name", map.name}, {"uuid", map.uuid}});
        return {{"schema", 1},           {"recorded", now()}, {"versions", versions()},
                {"modules", modules},    {"names", m_names},  {"maps", maps},
                {"commands", m_commands}};
    }

private:
    void readNames(const Places& places)
    {
        for (const std::string& path : blockDevices(places.sysfsBlock, places.dev)) {
            Row name = explanation(m_manager, m_modules, path);
            m_readings.push_back(deviceReading(name));
            if (m_isRecorded)
                m_names.push_back(std::move(name));
        }
    }

    void askAboutAll()
    {
        for (const DeviceReading& reading : m_readings) {
            if (reading.owner == "native" && !reading.isPartition)
                m_tools.examineDisk(reading.path);
        }
    }

    void askAboutGiven()
    {
        PathSource paths = wantedPaths(m_options, [] {});
        while (const std::optional<std::string> path = paths.next()) {
            m_given.push_back(*path);
            const Row row = deviceRow(m_manager, *path);
            if (row["owner"] == "native")
                m_tools.examineDisk(*path);
            else
                m_receiver({Finding::State::note, *path,
                            "no native path: the volume manager is not asked about it", ""});
        }
    }

    const Options& m_options;
    FindingReceiver m_receiver;
    CDmpClaimManager m_manager;
    std::vector<std::unique_ptr<CDmpDeviceClaimBase>> m_modules;
    bool m_isRecorded;
    Row m_names = Row::array();
    Row m_commands = Row::array();
    ToolExamination m_tools;
    std::vector<DeviceReading> m_readings;
    std::vector<std::string> m_given;
};

int exitStatus(const FindingCounts& counts)
{
    if (counts.count(Finding::State::error) > 0)
        return 32;
    return counts.count(Finding::State::warning) > 0 ? 64 : 0;
}

} // namespace

namespace command {

int runDoctor(const Options& options, OutputStream& output)
{
    const bool isJson = options.form == Form::json;
    std::optional<TraceRecorder> trace;
    if (isJson)
        trace.emplace(openTraceSink(options.trace));
    const CZeTraceLogHandle log = trace ? trace->openLog() : openTraceLog(options.trace);
    Findings findings(isJson ? nullptr : &output);
    StopRequest stop;
    Interrupt interrupt(stop, [] {});
    Doctor doctor(options, log, stop, findings);
    try {
        runInThread([&] { doctor.examine(); }); // for Interrupt
    } catch (const Interrupted&) {
        // The one who interrupts ends the process.
    }
    interrupt.finish();
    if (trace) {
        Row report = doctor.report();
        report["findings"] = findings.rows();
        report["trace"] = trace->lines();
        output.write(jsonText(report));
    } else {
        output.write(summary(findings.counts()));
    }
    output.flush();
    return exitStatus(findings.counts());
}

} // namespace command
