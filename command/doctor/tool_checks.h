#ifndef DOCTOR_TOOL_CHECKS_H
#define DOCTOR_TOOL_CHECKS_H

#include <optional>
#include <string>
#include <vector>

#include "doctor/finding.h"
#include "interrupt/stop_request.h"
#include "kovm/tables.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"

namespace command {

/// A question to a tool, and what it answered.
struct AskedCommand {
    std::string command;
    int status; // of CZeExecPipeBase::Exec
    std::vector<std::string> output;
};

/// Asks the volume manager's tools about disks, without retries. Changes nothing there.
class ToolChecks {
public:
    /// The trace lines go to `log`. checkDisk throws Interrupted once `stop` is requested. Each
    /// command that was run is added to `commands`, unless that is null.
    ToolChecks(const koze_pdk_4_4::CZeTraceLogHandle& log, StopRequest& stop,
               FindingReceiver report, std::vector<AskedCommand>* commands);

    /// Checks that the tools can be run. Called first.
    void checkTools();

    /// Asks for the node of a disk and the node's paths. Asks nothing when the tools cannot be run,
    /// or have failed in a way that would repeat itself.
    void checkDisk(const std::string& path);

private:
    using Lines = kovm::Lines;

    /// A question about a device, as a command of a tool.
    struct Question {
        std::string path;
        std::string command;
        std::string remedy; // what to do when the tool fails
    };

    bool checkTool(const std::string& tool, Finding::State unusable, const char* consequence);
    std::string nodeOf(const std::string& path);
    void checkPathOf(const std::string& path, const std::string& node);
    void reportPath(const std::string& path, const std::string& node, const kovm::Row& best);
    std::optional<Lines> answerTo(const Question& question);
    void reportFailure(const Question& question, int status, const Lines& output);
    void reportNoTable(const Question& question, const char* fault);
    void reportMissingRow(const Question& question, const std::string& missing,
                          const std::string& remedy);
    void giveUp(Finding finding);

    koze_pdk_4_4::CZeTraceLogHandle m_log;
    StopRequest& m_stop;
    FindingReceiver m_report;
    std::vector<AskedCommand>* m_commands;
    bool m_canAsk = false;
};

} // namespace command

#endif
