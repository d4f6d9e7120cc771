#include "tests/command/doctor/asked_disks.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include "doctor/tool_files.h"

std::map<std::string, mode_t>& scriptedModes()
{
    static std::map<std::string, mode_t> modes;
    return modes;
}

extern "C" int stat(const char* name, struct stat* file) noexcept
{
    const std::string path = name;
    const bool isTool = path.rfind("/usr/sbin/", 0) == 0;
    ScriptedTools* tools = ScriptedTools::current();
    if (tools == nullptr || (!isTool && path.rfind("/dev/", 0) != 0))
        return fstatat(AT_FDCWD, name, file, 0);
    tools->events.push_back("stat " + path);
    if (!tools->installed || tools->missing.count(path) > 0) {
        errno = ENOENT;
        return -1;
    }
    const auto mode = scriptedModes().find(path);
    const mode_t usual = isTool ? S_IFREG : S_IFBLK;
    *file = {};
    file->st_mode = mode == scriptedModes().end() ? usual : mode->second;
    return 0;
}

DiskFindings::DiskFindings()
{
    scriptedModes().clear();
}

void DiskFindings::check(const std::vector<std::string>& paths)
{
    const auto take = [this](const command::Finding& finding) { m_findings.push_back(finding); };
    m_findings.clear();
    m_answers.clear();
    if (!command::checkTools(log, take))
        return;
    bool isLast = false;
    for (const std::string& path : paths) {
        m_answers.push_back(isLast ? command::DiskAnswer{path}
                                   : command::askAboutDisk(path, log, stop, true));
        isLast |= m_answers.back().mustBeLast();
    }
    command::reportAnswers(m_answers, command::holdsAny(m_answers), take);
}

std::vector<command::AskedCommand> DiskFindings::commands() const
{
    std::vector<command::AskedCommand> all;
    for (const command::DiskAnswer& answer : m_answers)
        all.insert(all.end(), answer.asked.begin(), answer.asked.end());
    return all;
}

std::vector<command::MultipathDisk> DiskFindings::nodes() const
{
    return command::nodesOf(command::Inventory({"/nonexistent", "/nonexistent"}), m_answers);
}

std::vector<std::string> DiskFindings::findings() const
{
    std::vector<std::string> lines;
    for (const command::Finding& finding : m_findings) {
        if (finding.code != command::Code::toolReady)
            lines.push_back(std::string(command::severityName(finding.severity())) + ' ' +
                            command::factsOf(finding.code).name + ' ' + finding.device + ": " +
                            finding.text);
    }
    return lines;
}
