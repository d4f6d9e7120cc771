#include "active/evidence.h"

#include <string_view>

#include "active/short_command.h"
#include "kovm/command_lines.h"
#include "multipath/ending_text.h"
#include "text/shortened.h"
#include "text/text.h"

namespace command {

namespace {

using Code = Outcome::Code;

/// The status by which kodmpadm tells that it does not know a name.
constexpr int unknownName = 1;

std::string adminTool()
{
    const std::string query = kovm::nodeQuery("");
    return query.substr(0, query.find(' '));
}

std::string failureText(const ToolAnswer& answer)
{
    constexpr unsigned long limitSeconds = 600; // of the library's lookups
    return answer.tool + ' ' +
           (answer.result ? endingText(*answer.result, limitSeconds, answer.words)
                          : "could not be run");
}

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/// Why the answer is no table. `unknown` says what the volume manager does not know when the tool
/// does not know the name.
std::optional<Outcome> faultIn(const ToolAnswer& answer, const std::string& unknown)
{
    if (answer.result != 0) {
        const std::string failure = failureText(answer);
        return answer.result == unknownName ? Outcome{Code::notFound, unknown + ": " + failure}
                                            : Outcome{Code::toolFailed, failure};
    }
    if (answer.fault != kovm::Fault::none)
        return Outcome{Code::noTable, std::string(kovm::textOf(answer.fault)) +
                                          " in the answer of " + answer.tool};
    return {};
}

} // namespace

void Evidence::take(const TraceEvent& event)
{
    using Kind = TraceEvent::Kind;
    if (event.kind == Kind::toolStarts)
        start(event);
    else if (event.kind == Kind::activePath)
        m_isPathNamed = true;
    else if (m_current != nullptr)
        takeOutput(event);
}

void Evidence::start(const TraceEvent& event)
{
    const std::string pathQuery = kovm::pathQuery("");
    m_current = nullptr;
    if (startsWith(event.command, kovm::nodeQuery(""))) {
        m_current = &m_node.emplace();
    } else if (startsWith(event.command, pathQuery)) {
        m_current = &m_path.emplace();
        m_nodeName = event.command.substr(pathQuery.size());
    }
    if (m_current != nullptr)
        m_current->tool = shortCommand(event.command);
}

void Evidence::takeOutput(const TraceEvent& event)
{
    using Kind = TraceEvent::Kind;
    switch (event.kind) {
    case Kind::toolFails:
    case Kind::toolCannotRun:
        m_current->result = event.result;
        m_current->words = shortened(event.output);
        break;
    case Kind::toolAnswers:
        // The lines come without their ends, so that a table cannot be read again.
        m_current->fault =
            contains(event.output, "NAME") ? kovm::Fault::none : kovm::Fault::noHeader;
        m_current->hasEnabled = contains(event.output, "ENABLED");
        break;
    case Kind::noOutput:
        m_current->fault = kovm::Fault::noOutput;
        break;
    case Kind::headerNotFirst:
        m_current->fault = kovm::Fault::headerNotFirst;
        break;
    default:
        break;
    }
}

Outcome Evidence::outcome(const std::string& disk, const std::string& activePath) const
{
    if (!m_node)
        return {Code::notInstalled, adminTool() + " is missing, or may not be executed"};
    const std::string unknown = "the volume manager does not know " + disk;
    if (std::optional<Outcome> fault = faultIn(*m_node, unknown))
        return *fault;
    if (!m_path || m_nodeName.empty())
        return {Code::notFound, unknown + ": no node in the answer of " + m_node->tool};
    return pathOutcome(disk, activePath);
}

Outcome Evidence::pathOutcome(const std::string& disk, const std::string& activePath) const
{
    const std::string node = "node " + m_nodeName;
    const std::string unknown =
        "the volume manager does not know " + node + ", which it named for " + disk;
    if (std::optional<Outcome> fault = faultIn(*m_path, unknown))
        return *fault;
    if (!m_isPathNamed)
        return {Code::noPath, "no path of " + node + " can be used"};
    if (!m_path->hasEnabled)
        return {Code::noPath,
                "no path of " + node + " is enabled; " + activePath + " is the first primary one"};
    return {Code::confirmed, "the volume manager names " + activePath + " for " + node};
}

} // namespace command
