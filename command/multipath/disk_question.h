#ifndef MULTIPATH_DISK_QUESTION_H
#define MULTIPATH_DISK_QUESTION_H

#include <optional>
#include <string>
#include <vector>

#include "interrupt/stop_request.h"
#include "kovm/tables.h"
#include "output/document.h"
#include "pdk/include/czetracelog.h"

namespace command {

/// A question to a tool, and what it answered.
struct AskedCommand {
    std::string command;
    int status; // of CZeExecPipeBase::Exec
    std::vector<std::string> output;
};

/// What the volume manager's tools answered about a disk.
struct DiskAnswer {
    enum class Outcome {
        answered, // node and paths are known
        misnamed, // the tools would misread the name: not asked
        noNode,   // the answer names no node for the disk
        refused,  // the question for the node failed: the disk is unknown, or the tool is at fault
        failed,   // the tool died, or the question for the node's paths failed
        unreadable, // an answer is no table
        hangs,      // no answer within the limit
        floods,     // too much output
        notRun,     // the tool cannot be started
        notAsked    // an earlier question was the last one
    };

    std::string path;
    Outcome outcome = Outcome::notAsked;
    std::string reason = {};              // in words, of an outcome that is a failure
    std::string node = {};                // empty when not known
    kovm::Lines pathTable = {};           // the node's
    std::string command = {};             // the last question
    int status = 0;                       // of the last question
    std::vector<AskedCommand> asked = {}; // that ran; their output only if that is wanted
    Document::List trace = {};            // of the tools' runs, if that is wanted

    bool isKnown() const { return !node.empty(); }

    /// Whether the next question would fail in the same way.
    bool mustBeLast() const
    {
        return outcome == Outcome::hangs || outcome == Outcome::floods ||
               outcome == Outcome::notRun;
    }
};

/// Asks the volume manager's tools about a disk, without retries. Changes nothing there. The trace
/// lines go to `log`. `keepsOutput` is for reports. Throws Interrupted once `stop` is requested.
DiskAnswer askAboutDisk(const std::string& path, const koze_pdk_4_4::CZeTraceLogHandle& log,
                        StopRequest& stop, bool keepsOutput);

/// Asks for the paths of a node by its name, in the same way.
DiskAnswer askAboutNode(const std::string& node, const koze_pdk_4_4::CZeTraceLogHandle& log,
                        StopRequest& stop);

} // namespace command

#endif
