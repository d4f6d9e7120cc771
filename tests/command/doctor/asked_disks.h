#ifndef TESTS_COMMAND_DOCTOR_ASKED_DISKS_H
#define TESTS_COMMAND_DOCTOR_ASKED_DISKS_H

// Replaces stat(2) of the whole process besides what ScriptedTools replaces. Include it in the one
// source file of a test program.

#include <gmock/gmock.h>

#include <cerrno>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "doctor/disk_findings.h"
#include "doctor/tool_files.h"
#include "multipath/disk_question.h"
#include "tests/support/scripted_tools.h"

/// The modes that stat(2) reports for these paths. Other tools are files, and other paths in /dev
/// are block devices. ScriptedTools says which are missing.
inline std::map<std::string, mode_t>& scriptedModes()
{
    static std::map<std::string, mode_t> modes;
    return modes;
}

// NOLINTNEXTLINE(misc-definitions-in-headers): each test program has one source file
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

inline constexpr char nodeQuery[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
inline constexpr char otherNodeQuery[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdd";
inline constexpr char pathQuery[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";

inline const std::vector<std::string> nodeTable{"NAME       STATE      GROUP    PATHS",
                                                "====", "arr0_17    ENABLED    arr0     2"};
inline const std::vector<std::string> pathTable{"NAME    STATE    TYPE    CTLR",
                                                "====", "sdb     ENABLED(A)    PRIMARY    c1"};

/// What doctor asks the volume manager's tools, and what it makes of their answers.
class DiskFindings : public testing::Test {
protected:
    DiskFindings() { scriptedModes().clear(); }

    /// Checks the tools, and asks about the disks one after the other, like one job of doctor.
    void check(const std::vector<std::string>& paths)
    {
        const auto take = [this](const command::Finding& finding) {
            m_findings.push_back(finding);
        };
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

    std::vector<command::AskedCommand> commands() const
    {
        std::vector<command::AskedCommand> all;
        for (const command::DiskAnswer& answer : m_answers)
            all.insert(all.end(), answer.asked.begin(), answer.asked.end());
        return all;
    }

    /// The nodes in the answers, of disks that the kernel does not have.
    std::vector<command::MultipathDisk> nodes() const
    {
        return command::nodesOf(command::Inventory({"/nonexistent", "/nonexistent"}), m_answers);
    }

    /// "SEVERITY CODE DEVICE: TEXT" for each finding after those about the tools.
    std::vector<std::string> findings() const
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

    const command::Finding& last() const { return m_findings.back(); }

    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    command::StopRequest stop;
    ScriptedTools tools;

private:
    std::vector<command::Finding> m_findings;
    std::vector<command::DiskAnswer> m_answers;
};

#endif
