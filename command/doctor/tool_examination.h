#ifndef DOCTOR_TOOL_EXAMINATION_H
#define DOCTOR_TOOL_EXAMINATION_H

#include <string>
#include <vector>

#include "doctor/finding.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "row.h"
#include "stop_request.h"

namespace command {

/// Asks the volume manager's tools what they know, and changes nothing there.
class ToolExamination {
public:
    /// The trace lines of what is asked go to `log`. `stop` ends the examination by Interrupted.
    ToolExamination(const koze_pdk_4_4::CZeTraceLogHandle& log, StopRequest& stop,
                    FindingReceiver report);

    /// Looks whether the tools are there. Called first.
    void examineTools();

    /// Asks for the node of a disk and the node's paths; not when the tools are missing or have
    /// failed in a way that they would fail in again.
    void examineDisk(const std::string& path);

    /// What was asked and answered so far, an element each:
    ///
    ///     command    the command line
    ///     status     of CZeExecPipeBase::Exec
    ///     output     the lines
    const Row& commands() const { return m_commands; }

private:
    using Lines = std::vector<std::string>;

    bool examineTool(const std::string& tool, Finding::State unusable, const char* consequence);
    bool ask(const std::string& path, const std::string& command);
    void tellOfFailure(const std::string& path, const std::string& command, int status,
                       const Lines& output);
    std::string nodeOf(const std::string& path, const std::string& disk);
    std::string activePathOf(const std::string& path, const std::string& node);

    koze_pdk_4_4::CZeTraceLogHandle m_log;
    StopRequest& m_stop;
    FindingReceiver m_report;
    CKoDMPSupport m_support;
    bool m_canAsk = false;
    Row m_commands = Row::array();
};

} // namespace command

#endif
