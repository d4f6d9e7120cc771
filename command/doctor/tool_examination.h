#ifndef DOCTOR_TOOL_EXAMINATION_H
#define DOCTOR_TOOL_EXAMINATION_H

#include <optional>
#include <string>
#include <vector>

#include "doctor/finding.h"
#include "doctor/tool_tables.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "row.h"
#include "stop_request.h"

namespace command {

/// Asks the volume manager's tools what they know, each question once, and changes nothing there.
class ToolExamination {
public:
    /// The trace lines of what is asked go to `log`. `stop` ends the examination by Interrupted.
    /// What was asked and answered is added to the array `commands`, unless that is null, an
    /// element each:
    ///
    ///     command    the command line
    ///     status     of CZeExecPipeBase::Exec
    ///     output     the lines
    ToolExamination(const koze_pdk_4_4::CZeTraceLogHandle& log, StopRequest& stop,
                    FindingReceiver report, Row* commands);

    /// Looks whether the tools are there. Called first.
    void examineTools();

    /// Asks for the node of a disk and the node's paths; not when the tools are missing or have
    /// failed in a way that they would fail in again.
    void examineDisk(const std::string& path);

private:
    using Lines = std::vector<std::string>;

    /// About a device, to a tool.
    struct Question {
        std::string path;
        std::string command;
        std::string remedy; // what may help when the tool fails
    };

    bool examineTool(const std::string& tool, Finding::State unusable, const char* consequence);
    std::string nodeOf(const std::string& path);
    void examinePathOf(const std::string& path, const std::string& node);
    std::optional<Lines> answerTo(const Question& question);
    void tellOfFailure(const Question& question, int status, const Lines& output);
    void tellOfNothing(const Question& question, const char* fault, const std::string& missing,
                       const std::string& remedy);
    void giveUp(Finding finding);

    koze_pdk_4_4::CZeTraceLogHandle m_log;
    StopRequest& m_stop;
    FindingReceiver m_report;
    Row* m_commands;
    bool m_canAsk = false;
};

} // namespace command

#endif
