#ifndef KO_DMP_MAPPING_H
#define KO_DMP_MAPPING_H

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/scripted_tools.h"
#include "tests/support/trace_outline.h"

using Lines = std::vector<std::string>;

constexpr char file[] = "dmp_nativepath_claim.cpp";
constexpr char nodeCommand[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
constexpr char pathCommand[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";

/// Base of the tests of single lookups: the node of disk sdc, and the best path of node arr0_17.
class KoDmpMapping : public testing::Test {
protected:
    KoDmpMapping() { m_support.registerTraceLog(m_log.handle()); }

    int node(const Lines& output, int status = 0)
    {
        m_tools.answer(nodeCommand, status, output);
        return m_support.getKoVMDiskForOSDiskHandler("sdc", m_name);
    }

    int path(const Lines& output, int status = 0)
    {
        m_tools.answer(pathCommand, status, output);
        return m_support.getOSDiskHandleForKoVMDisk("arr0_17", m_name);
    }

    /// The names found, with the result before them when it is not 0: "arr0_17", "1 ".
    std::string nodeIn(const Lines& output) { return found(node(output)); }
    std::string pathIn(const Lines& output) { return found(path(output)); }

    /// The lines of an operation besides its tracer's and those of `executeCommand`.
    Lines ownTrace()
    {
        Lines own = outermost(outline(m_log.takeLines(), file));
        const auto isBracket = [](const std::string& line) {
            return line.rfind("> ", 0) == 0 || line.rfind("< ", 0) == 0;
        };
        own.erase(std::remove_if(own.begin(), own.end(), isBracket), own.end());
        return own;
    }

    ScriptedTools m_tools;
    RecordingLog m_log;
    CKoDMPSupport m_support;
    std::string m_name = "old";

private:
    std::string found(int result) const
    {
        return (result == 0 ? "" : std::to_string(result) + ' ') + m_name;
    }
};

#endif
