#include "doctor/examination.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <unordered_set>

#include "doctor/device_checks.h"
#include "doctor/disk_findings.h"
#include "doctor/disk_inquiry.h"
#include "doctor/kernel_disks.h"
#include "doctor/redundancy.h"
#include "doctor/same_disk.h"
#include "doctor/tool_files.h"
#include "doctor/trace_recorder.h"
#include "kernel/block_devices.h"
#include "kernel/inventory.h"
#include "kernel/map_status.h"
#include "text/word_list.h"

using koze_pdk_4_4::CZeTraceLogHandle;

namespace command {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char driverList[] = "/proc/devices";

/// How many names are read between two updates of the progress.
constexpr std::size_t namesPerProgress = 1024;

/// How many disks are asked about to learn whether the tools know any.
constexpr std::size_t mostOtherDisks = 8;

class Examination {
public:
    Examination(const ExaminationOrder& order, const std::vector<Module>& modules,
                std::shared_ptr<StopRequest> stop, const FindingReceiver& receiver)
        : m_order(order), m_modules(modules), m_stop(std::move(stop)), m_receiver(receiver),
          m_forReport(static_cast<bool>(order.takeName)), m_kernel(order.roots),
          m_recorder(openTraceSink(order.trace)),
          m_log(m_forReport ? m_recorder.openLog() : openTraceLog(order.trace))
    {
        // Without a log the library answers several times faster.
        if (order.trace.level || order.trace.file)
            m_manager.registerTraceLog(m_log);
    }

    Report run()
    {
        readNames();
        const std::vector<std::string> disks = disksToAskAbout();
        const bool isAsked = !disks.empty() || m_order.paths.empty();
        if (isAsked && checkTools(m_log, m_receiver))
            askTools(disks);
        keepTrace(m_recorder.takeLines());
        if (!isInterrupted())
            checkMachine();
        reportInterrupt();
        m_report.duration = Clock::now() - m_begin;
        return std::move(m_report);
    }

private:
    void readNames()
    {
        const KernelRoots& roots = m_kernel.roots();
        for (const std::string& path : blockDevices(roots.blockFolder(), roots.dev)) {
            if (isInterrupted())
                return;
            const Explanation name = explanation(m_manager, m_modules, path);
            m_readings.push_back(deviceReading(name));
            if (m_forReport)
                m_order.takeName(name);
            if (m_readings.size() % namesPerProgress == 0)
                m_order.showProgress(std::to_string(m_readings.size()) + " names read");
        }
    }

    std::vector<std::string> disksToAskAbout()
    {
        return m_order.paths.empty() ? nativeDisks() : givenDisks();
    }

    std::vector<std::string> nativeDisks() const
    {
        std::vector<std::string> disks;
        for (const DeviceReading& reading : m_readings) {
            if (reading.owner != nullptr && reading.owner->asksTools && !reading.isPartition)
                disks.push_back(reading.path);
        }
        return disks;
    }

    /// The native disks among the given paths, and those that hold given partitions, each once.
    std::vector<std::string> givenDisks()
    {
        std::vector<std::string> disks;
        std::unordered_set<std::string> known;
        for (const std::string& path : m_order.paths) {
            const DeviceAnswer answer = deviceAnswer(m_manager, path);
            const std::string& disk = answer.isPartition ? *answer.disk : path;
            if (answer.owner == nullptr || !answer.owner->asksTools)
                m_receiver({Code::notAsked, path,
                            "no native path: the volume manager is not asked about it"});
            else if (known.insert(disk).second)
                disks.push_back(disk);
        }
        return disks;
    }

    void askTools(const std::vector<std::string>& disks)
    {
        std::vector<DiskAnswer> answers = ask(disks);
        const bool knowsOthers = holdsAny(answers) || holdsOtherDisk(disks, answers);
        reportAnswers(answers, knowsOthers, m_receiver);
        m_report.end = m_stop->reason();
        if (m_report.end != StopReason::none)
            reportEnd(answers);
        m_report.disks = nodesOf(m_kernel, answers);
        for (DiskAnswer& answer : answers) {
            std::move(answer.asked.begin(), answer.asked.end(),
                      std::back_inserter(m_report.commands));
            keepTrace(std::move(answer.trace));
        }
    }

    std::vector<DiskAnswer> ask(const std::vector<std::string>& disks)
    {
        InquiryOptions options;
        options.jobs = m_order.options.jobs;
        options.forReport = m_forReport;
        options.trace = m_order.trace;
        options.progress = [&](std::size_t done) {
            m_order.showProgress(std::to_string(done) + " of " + std::to_string(disks.size()) +
                                 " disks asked about");
        };
        return askAboutDisks(disks, options, m_stop);
    }

    /// Whether the volume manager holds another disk of this machine: its tools work then, and a
    /// given disk that they do not know is not the volume manager's. Asks the tools only when a
    /// given disk may be unknown to them.
    bool holdsOtherDisk(const std::vector<std::string>& disks,
                        const std::vector<DiskAnswer>& answers)
    {
        if (m_order.paths.empty() || m_stop->isRequested() || !mayBeUnknown(answers))
            return false;
        const std::unordered_set<std::string> asked(disks.begin(), disks.end());
        std::vector<std::string> others;
        for (const std::string& disk : nativeDisks()) {
            if (asked.count(disk) == 0 && others.size() < mostOtherDisks)
                others.push_back(disk);
        }
        return holdsAny(ask(others));
    }

    void reportEnd(const std::vector<DiskAnswer>& answers)
    {
        std::vector<std::string> disks;
        for (const DiskAnswer& answer : answers) {
            if (answer.outcome == DiskAnswer::Outcome::notAsked)
                disks.push_back(answer.path);
        }
        const std::string left = std::to_string(disks.size()) + " of " +
                                 counted(answers.size(), "disk") + " left unexamined" +
                                 (disks.empty() ? "" : ": " + joined(disks));
        if (m_report.end == StopReason::interrupt)
            m_receiver({Code::interrupted, "dmpclaim doctor", "a signal came; " + left});
        else
            m_receiver({Code::timeLimit, "dmpclaim doctor",
                        "the time limit of " + std::to_string(m_order.options.timeout->count()) +
                            " s passed; " + left,
                        "Find out what the tools wait for, or give more time with --timeout."});
    }

    bool isInterrupted() const { return m_stop->reason() == StopReason::interrupt; }

    /// A signal may also come while no tool is asked.
    void reportInterrupt()
    {
        if (!isInterrupted() || m_report.end == StopReason::interrupt)
            return;
        m_report.end = StopReason::interrupt;
        m_receiver({Code::interrupted, "dmpclaim doctor", "a signal came; not all was examined"});
    }

    void checkMachine()
    {
        const std::unordered_set<std::string> given = givenDevices();
        const DeviceMapper deviceMapper;
        std::vector<MultipathDisk> disks;
        for (MultipathDisk& disk : kernelDisks(m_kernel, std::cref(deviceMapper))) {
            if (m_order.paths.empty() || given.count(disk.device) > 0)
                disks.push_back(std::move(disk));
            else
                checkGivenPaths(disk, given);
        }
        m_report.disks = eachDiskOnce(std::move(m_report.disks), std::move(disks));
        for (const MultipathDisk& disk : m_report.disks)
            checkRedundancy(disk, m_order.options.expectedPaths, m_receiver);
        checkStates(m_report.disks, m_receiver);
        checkDevices(m_kernel, driverList, m_readings, m_order.paths, m_receiver);
        if (m_forReport)
            keepMaps();
    }

    /// The paths of the given devices, and of the disks that hold given partitions.
    std::unordered_set<std::string> givenDevices() const
    {
        std::unordered_set<std::string> devices;
        for (const std::string& path : m_order.paths) {
            const BlockDevice* device = m_kernel.at(path);
            if (device == nullptr)
                continue;
            devices.insert(device->path());
            if (const BlockDevice* disk = m_kernel.parentOf(*device))
                devices.insert(disk->path());
        }
        return devices;
    }

    /// Checks the given paths of the disk only: the user has not asked about its other paths.
    void checkGivenPaths(const MultipathDisk& disk, const std::unordered_set<std::string>& given)
    {
        for (const ExaminedPath& path : disk.paths) {
            if (given.count("/dev/" + path.name) > 0)
                checkPath(disk, path.name, m_receiver);
        }
    }

    void keepMaps()
    {
        for (const BlockDevice& device : m_kernel.devices()) {
            if (!device.mapName().empty())
                m_report.maps.emplace_back(device.mapName(),
                                           device.attribute("dm/uuid").value_or(""));
        }
    }

    void keepTrace(Document::List lines)
    {
        std::move(lines.begin(), lines.end(), std::back_inserter(m_report.trace));
    }

    const ExaminationOrder& m_order;
    const std::vector<Module>& m_modules;
    const std::shared_ptr<StopRequest> m_stop;
    const FindingReceiver& m_receiver;
    const bool m_forReport;
    const Clock::time_point m_begin = Clock::now();
    const Inventory m_kernel;
    TraceRecorder m_recorder;
    CZeTraceLogHandle m_log;
    CDmpClaimManager m_manager;
    std::vector<DeviceReading> m_readings;
    Report m_report;
};

} // namespace

Report examine(const ExaminationOrder& order, const std::vector<Module>& modules,
               const std::shared_ptr<StopRequest>& stop, const FindingReceiver& report)
{
    return Examination(order, modules, stop, report).run();
}

} // namespace command
