#ifndef KO_DMP_RETRY_H
#define KO_DMP_RETRY_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/scripted_tools.h"
#include "tests/support/trace_outline.h"

using Lines = std::vector<std::string>;

constexpr char file[] = "dmp_nativepath_claim.cpp";
constexpr char lookup[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char rescanDisk[] = "/usr/sbin/kodisk   scandisks  device=sdc";
constexpr char rescanAll[] = "/usr/sbin/kodisk   scandisks ";
constexpr char removal[] = "/usr/sbin/kodisk   rm arr0_17";

/// Base of the tests of lookups that are repeated until the mapping of disk sdc is repaired.
class KoDmpRetry : public testing::Test {
protected:
    KoDmpRetry() { m_support.registerTraceLog(m_log.handle()); }

    void lookupFails() { m_tools.answer(lookup, 9); }
    void lookupFinds(const std::string& node)
    {
        m_tools.answer(lookup, 0, {"NAME STATE", "====", node});
    }
    void answers(const char* command, int status = 0) { m_tools.answer(command, status); }

    int waited() { return m_support.getKoVMDiskForOSDiskHandler_Waited("sdc", m_node); }
    int refreshed() { return m_support.getKoVMDiskForOSDiskHandler_Refreshed("sdc", m_node); }

    /// The lines that the operation itself wrote, and the names of the operations that it called.
    Lines trace() { return outermost(outline(m_log.takeLines(), file)); }

    ScriptedTools m_tools;
    RecordingLog m_log;
    CKoDMPSupport m_support;
    std::string m_node = "old";
};

#endif
