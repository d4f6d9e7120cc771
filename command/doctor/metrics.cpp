#include "doctor/metrics.h"

#include <cstdio>
#include <map>
#include <set>
#include <utility>

#include "text/printable.h"

namespace command {

namespace {

using Labels = std::vector<std::pair<const char*, std::string>>;

/// Drivers that multipath disks. Each has its metrics, also when it has no disk, so that a rule can
/// tell 0 from a host that does not report.
constexpr const char* allDrivers[] = {"device-mapper", "nvme", "kodmp"};

/// The value of a label: printable ASCII, with '\', '"' escaped.
std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : printableWord(text)) {
        if (c == '\\' || c == '"')
            result += '\\';
        result += c;
    }
    return result + '"';
}

class Metrics {
public:
    /// Begins a gauge; its samples follow.
    void begin(const char* name, const char* help)
    {
        m_name = std::string("dmpclaim_") + name;
        m_text += "# HELP " + m_name + ' ' + help + "\n# TYPE " + m_name + " gauge\n";
    }

    void add(const Labels& labels, const std::string& value)
    {
        std::string list;
        for (const auto& [name, text] : labels)
            list += (list.empty() ? "" : ",") + std::string(name) + '=' + quoted(text);
        m_text += m_name + (list.empty() ? "" : '{' + list + '}') + ' ' + value + '\n';
    }

    void add(const Labels& labels, std::size_t value) { add(labels, std::to_string(value)); }

    std::string text() && { return std::move(m_text); }

private:
    std::string m_name;
    std::string m_text;
};

void addTotals(const Report& report, Metrics& metrics)
{
    std::map<std::string, std::size_t> disks;
    std::map<std::pair<std::string, PathState>, std::size_t> paths;
    for (const MultipathDisk& disk : report.disks) {
        ++disks[disk.driver];
        for (const ExaminedPath& path : disk.paths)
            ++paths[{disk.driver, path.state}];
    }
    metrics.begin("disks", "Disks whose paths were examined.");
    for (const char* driver : allDrivers)
        metrics.add({{"driver", driver}}, disks[driver]);
    metrics.begin("paths", "Paths of these disks by state; offline and failed ones are lost.");
    for (const char* driver : allDrivers) {
        for (const PathState state : allPathStates)
            metrics.add({{"driver", driver}, {"state", pathStateName(state)}},
                        paths[{driver, state}]);
    }
}

void addDisks(const Report& report, Metrics& metrics)
{
    metrics.begin("disk_paths", "Paths of a disk.");
    for (const MultipathDisk& disk : report.disks)
        metrics.add({{"device", disk.device}, {"driver", disk.driver}}, disk.paths.size());
    metrics.begin("disk_usable_paths", "Paths of a disk that can be used.");
    for (const MultipathDisk& disk : report.disks)
        metrics.add({{"device", disk.device}, {"driver", disk.driver}}, disk.usablePaths());
    metrics.begin("disk_lost_paths", "Paths of a disk that cannot be used.");
    for (const MultipathDisk& disk : report.disks)
        metrics.add({{"device", disk.device}, {"driver", disk.driver}},
                    disk.paths.size() - disk.usablePaths());
    metrics.begin("disk_used_path_info", "The path that carries the I/O of a disk, where known.");
    for (const MultipathDisk& disk : report.disks) {
        for (const ExaminedPath& path : disk.paths) {
            if (path.isUsed)
                metrics.add({{"device", disk.device}, {"driver", disk.driver}, {"path", path.name}},
                            1);
        }
    }
}

/// A sample for each code but those that tell that all is well.
void addFindings(const std::vector<Finding>& findings, Metrics& metrics)
{
    std::map<Code, std::size_t> counts;
    for (const Finding& finding : findings)
        ++counts[finding.code];
    metrics.begin("findings", "Findings of the doctor by code.");
    for (const CodeFacts& facts : codeTable) {
        if (facts.severity != Severity::ok)
            metrics.add({{"code", facts.name}, {"severity", severityName(facts.severity)}},
                        counts[facts.code]);
    }
}

void addRun(const Report& report, std::time_t now, Metrics& metrics)
{
    metrics.begin("doctor_complete", "1 when the last examination did not end early.");
    metrics.add({}, report.end == StopReason::none ? 1 : 0);
    metrics.begin("doctor_duration_seconds", "How long the last examination took.");
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.6f", report.duration.count());
    metrics.add({}, seconds);
    metrics.begin("doctor_last_run_timestamp_seconds", "When the last examination ended.");
    metrics.add({}, std::to_string(now));
}

} // namespace

std::string metricsText(const Report& report, const std::vector<Finding>& findings, std::time_t now)
{
    Metrics metrics;
    addTotals(report, metrics);
    addDisks(report, metrics);
    addFindings(findings, metrics);
    addRun(report, now, metrics);
    return std::move(metrics).text();
}

} // namespace command
