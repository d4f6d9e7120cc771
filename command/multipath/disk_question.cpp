#include "multipath/disk_question.h"

#include <climits>

#include "kovm/command_lines.h"
#include "multipath/ending_text.h"
#include "names/tool_name.h"
#include "pdk/include/czeexecpipe.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "zecmn/ending.h"

using koze_pdk_4_4::CZeExecPipePosix;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::EZeExecPipe;
using koze_pdk_4_4::runner::Ending;

namespace command {

namespace {

using Outcome = DiskAnswer::Outcome;

/// Far longer than an answer takes, and short enough for a user who waits for doctor.
constexpr unsigned long limitSeconds = 30;

/// The first line with anything but blanks; empty when there is none.
std::string firstWords(const kovm::Lines& lines)
{
    for (const std::string& line : lines) {
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            return line;
    }
    return {};
}

/// No path is so long. exec refuses arguments of 128 KiB, which would look like a fault of the
/// tool.
bool isTooLong(const std::string& name)
{
    return name.size() >= PATH_MAX;
}

/// What it means when a tool ended in this way. `exited` is for a status other than 0.
Outcome outcomeOf(Ending::Kind kind, Outcome exited)
{
    switch (kind) {
    case Ending::Kind::exited:
        return exited;
    case Ending::Kind::deadlinePassed:
        return Outcome::hangs;
    case Ending::Kind::boundExceeded:
        return Outcome::floods;
    default:
        return Outcome::failed;
    }
}

class DiskQuestion {
public:
    DiskQuestion(const CZeTraceLogHandle& log, StopRequest& stop, bool keepsOutput)
        : m_log(log), m_stop(stop), m_keepsOutput(keepsOutput)
    {}

    DiskAnswer ask(const std::string& path)
    {
        if (mayBeAsked(path))
            askForNode();
        return std::move(m_answer);
    }

    DiskAnswer askAboutNode(const std::string& node)
    {
        if (mayBeAsked(node)) {
            m_answer.node = node;
            askForPaths();
        }
        return std::move(m_answer);
    }

private:
    bool mayBeAsked(const std::string& name)
    {
        m_answer.path = name;
        const char* misread = whyNotAsked(name);
        if (misread == nullptr && isTooLong(name))
            misread = "it is longer than a path can be";
        if (misread != nullptr)
            end(Outcome::misnamed, misread);
        return misread == nullptr;
    }

    void askForNode()
    {
        const std::string disk = CNativePathClaim().removeDevPrefix(m_answer.path);
        const std::optional<kovm::Lines> table = tableOf(kovm::nodeQuery(disk), Outcome::refused);
        if (!table)
            return;
        std::string node = kovm::firstNode(*table).name;
        if (node.empty())
            return end(Outcome::noNode, "names no node");
        if (isTooLong(node))
            return end(Outcome::unreadable, "names a node whose name is longer than a path can be");
        m_answer.node = std::move(node);
        askForPaths();
    }

    void askForPaths()
    {
        std::optional<kovm::Lines> table = tableOf(kovm::pathQuery(m_answer.node), Outcome::failed);
        if (!table)
            return;
        m_answer.pathTable = std::move(*table);
        end(Outcome::answered);
    }

    /// The lines of a table. Without one, stores the outcome; `exited` when the tool itself ended
    /// with a status other than 0.
    std::optional<kovm::Lines> tableOf(const std::string& command, Outcome exited)
    {
        kovm::Lines output;
        const std::optional<int> status = run(command, output);
        if (!status)
            return std::nullopt;
        if (*status != 0) {
            storeFailure(*status, output, exited);
            return std::nullopt;
        }
        const kovm::Fault fault = kovm::faultOf(output);
        if (fault == kovm::Fault::none)
            return output;
        end(Outcome::unreadable, kovm::textOf(fault));
        return std::nullopt;
    }

    /// The status; nothing when the tool cannot be started.
    std::optional<int> run(const std::string& command, kovm::Lines& output)
    {
        CZeExecPipePosix runner(1);
        runner.registerTraceLog(m_log);
        m_answer.command = command;
        m_answer.status = 0;
        try {
            const RunningTool running(m_stop);
            m_answer.status = runner.Exec(command, output, "", limitSeconds, "", "", "");
        } catch (const EZeExecPipe& error) {
            end(Outcome::notRun, error.what());
            return std::nullopt;
        }
        m_stop.check();
        m_answer.asked.push_back(
            {command, m_answer.status, m_keepsOutput ? output : kovm::Lines()});
        return m_answer.status;
    }

    void storeFailure(int status, const kovm::Lines& output, Outcome exited)
    {
        const Ending ending = koze_pdk_4_4::runner::endingOf(status);
        end(outcomeOf(ending.kind, exited), endingText(status, limitSeconds, firstWords(output)));
    }

    void end(Outcome outcome, const std::string& reason = {})
    {
        m_answer.outcome = outcome;
        m_answer.reason = reason;
    }

    CZeTraceLogHandle m_log;
    StopRequest& m_stop;
    bool m_keepsOutput;
    DiskAnswer m_answer;
};

} // namespace

DiskAnswer askAboutDisk(const std::string& path, const CZeTraceLogHandle& log, StopRequest& stop,
                        bool keepsOutput)
{
    return DiskQuestion(log, stop, keepsOutput).ask(path);
}

DiskAnswer askAboutNode(const std::string& node, const CZeTraceLogHandle& log, StopRequest& stop)
{
    return DiskQuestion(log, stop, false).askAboutNode(node);
}

} // namespace command
