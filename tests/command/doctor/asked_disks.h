#ifndef TESTS_COMMAND_DOCTOR_ASKED_DISKS_H
#define TESTS_COMMAND_DOCTOR_ASKED_DISKS_H

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

#include "doctor/disk_findings.h"
#include "multipath/disk_question.h"
#include "tests/support/scripted_tools.h"

/// The modes that stat(2) reports for these paths. Other tools are files, and other paths in /dev
/// are block devices. ScriptedTools says which are missing.
///
/// A test program that links asked_disks replaces stat(2).
std::map<std::string, mode_t>& scriptedModes();

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
    DiskFindings();

    /// Checks the tools, and asks about the disks one after the other, like one job of doctor.
    void check(const std::vector<std::string>& paths);

    std::vector<command::AskedCommand> commands() const;

    /// The nodes in the answers, of disks that the kernel does not have.
    std::vector<command::MultipathDisk> nodes() const;

    /// "SEVERITY CODE DEVICE: TEXT" for each finding after those about the tools.
    std::vector<std::string> findings() const;

    const command::Finding& last() const { return m_findings.back(); }

    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    command::StopRequest stop;
    ScriptedTools tools;

private:
    std::vector<command::Finding> m_findings;
    std::vector<command::DiskAnswer> m_answers;
};

#endif
