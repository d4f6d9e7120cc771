#include "doctor/check_line.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string_view>

#include "text/printable.h"
#include "text/shortened.h"
#include "text/text.h"
#include "text/word_list.h"

namespace command {

namespace {

constexpr const char* statusNames[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
enum Status { ok, warning, critical, unknown };

/// More devices than fit on a pager's screen are counted.
constexpr std::size_t mostDevices = 8;

/// A problem of disks, and what is said of one and of several.
struct DiskProblem {
    Code code;
    const char* one;
    const char* several;
};

constexpr DiskProblem diskProblems[] = {
    {Code::noPath, "has no path left", "have no path left"},
    {Code::onePathLeft, "has one path left", "have one path left"},
    {Code::pathLost, "has lost a path", "have lost a path"},
    {Code::fewerPaths, "has fewer paths than expected", "have fewer paths than expected"}};

/// The name without its folder: "mpatha", "sdb".
std::string shortName(const std::string& device)
{
    for (const std::string_view folder : {"/dev/mapper/", "/dev/"}) {
        if (startsWith(device, folder))
            return device.substr(folder.size());
    }
    return device;
}

/// Text that can neither end the line nor begin the performance data.
std::string harmless(const std::string& text)
{
    std::string result;
    for (const char c : printable(text))
        result += c == '|' ? "\\x7c" : std::string(1, c);
    return result;
}

class CheckLine {
public:
    CheckLine(const Report& report, const std::vector<Finding>& findings) : m_report(report)
    {
        for (const Finding& finding : findings) {
            if (finding.severity() >= Severity::warning)
                m_found[finding.code].push_back(&finding);
        }
        for (const MultipathDisk& disk : report.disks)
            m_disks.emplace(disk.device, &disk);
    }

    CheckResult result() const
    {
        const Status status = statusOf();
        return {status, std::string("DMPCLAIM ") + statusNames[status] + " - " + harmless(text()) +
                            " | " + performanceData() + '\n'};
    }

private:
    using Devices = std::vector<const Finding*>;

    static bool endsEarly(Code code)
    {
        return code == Code::timeLimit || code == Code::interrupted;
    }

    Status statusOf() const
    {
        bool hasWarnings = false;
        for (const auto& [code, devices] : m_found) {
            if (factsOf(code).severity == Severity::error && !endsEarly(code))
                return critical;
            hasWarnings |= factsOf(code).severity == Severity::warning;
        }
        if (m_report.end != StopReason::none)
            return unknown;
        return hasWarnings ? warning : ok;
    }

    /// Errors come before warnings, problems of disks before others.
    std::string text() const
    {
        std::vector<std::string> problems;
        for (const Severity severity : {Severity::error, Severity::warning}) {
            for (const auto& [code, devices] : m_found) {
                if (factsOf(code).severity == severity)
                    problems.push_back(problemText(code, devices));
            }
        }
        if (!problems.empty())
            return joined(problems, "; ");
        return m_report.end == StopReason::none ? counted(m_report.disks.size(), "disk") + ", " +
                                                      counted(countPaths(true), "path")
                                                : "not everything was examined";
    }

    std::string problemText(Code code, const Devices& devices) const
    {
        if (endsEarly(code))
            return shortened(devices.front()->text); // it ends with the disks
        const auto* problem =
            std::find_if(std::begin(diskProblems), std::end(diskProblems),
                         [&](const DiskProblem& entry) { return entry.code == code; });
        std::string text = problem == std::end(diskProblems)
                               ? factsOf(code).name
                               : std::to_string(devices.size()) + " of " +
                                     counted(m_report.disks.size(), "disk") + ' ' +
                                     (devices.size() == 1 ? problem->one : problem->several);
        return text + ": " + listOf(devices);
    }

    std::string listOf(const Devices& devices) const
    {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < std::min(devices.size(), mostDevices); ++i)
            texts.push_back(shortName(devices[i]->device) + lostPathsOf(devices[i]->device));
        const std::size_t left = devices.size() - texts.size();
        return joined(texts) + (left == 0 ? "" : " and " + std::to_string(left) + " more");
    }

    /// " (sdb failed)"; empty for what is no disk of several paths, or has all of them.
    std::string lostPathsOf(const std::string& device) const
    {
        const auto disk = m_disks.find(device);
        const std::string lost = disk == m_disks.end() ? "" : lostPaths(*disk->second);
        return lost.empty() ? "" : " (" + lost + ")";
    }

    std::size_t countPaths(bool usable) const
    {
        std::size_t count = 0;
        for (const MultipathDisk& disk : m_report.disks)
            count += usable ? disk.usablePaths() : disk.paths.size() - disk.usablePaths();
        return count;
    }

    std::size_t countFound(Severity severity) const
    {
        std::size_t count = 0;
        for (const auto& [code, devices] : m_found)
            count += factsOf(code).severity == severity ? devices.size() : 0;
        return count;
    }

    /// data = label "=" value [ unit ] ";" warn ";" crit ";" min ";" max, all limits left out
    std::string performanceData() const
    {
        std::string data;
        const auto add = [&](const char* label, const std::string& value) {
            data += (data.empty() ? "" : " ") + std::string(label) + '=' + value + ";;;;";
        };
        add("disks", std::to_string(m_report.disks.size()));
        add("paths", std::to_string(countPaths(true)));
        add("failed", std::to_string(countPaths(false)));
        add("errors", std::to_string(countFound(Severity::error)));
        add("warnings", std::to_string(countFound(Severity::warning)));
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%.3fs", m_report.duration.count());
        add("time", seconds);
        return data;
    }

    const Report& m_report;
    std::map<Code, Devices> m_found; // in the order of codeTable
    std::map<std::string_view, const MultipathDisk*> m_disks;
};

} // namespace

CheckResult checkResult(const Report& report, const std::vector<Finding>& findings)
{
    return CheckLine(report, findings).result();
}

CheckResult unknownResult(const std::string& reason)
{
    return {unknown, "DMPCLAIM UNKNOWN - " + harmless(reason) + '\n'};
}

} // namespace command
