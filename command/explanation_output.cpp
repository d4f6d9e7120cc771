#include "explanation_output.h"

#include "printable.h"
#include "wrapped.h"

namespace {

constexpr std::size_t labelWidth = 15;

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string prefixList(const command::Row& prefixes)
{
    std::string list;
    for (const command::Row& prefix : prefixes)
        list += (list.empty() ? "" : ", ") + prefix.get<std::string>();
    return list;
}

} // namespace

namespace command {

void ExplanationOutput::write(const Row& row)
{
    if (!m_isFirst)
        m_output.write("\n");
    m_isFirst = false;
    m_output.write(printable(cellText(row["name"])) + '\n');
    writeModules(row["modules"]);
    writeAnswer(row);
    for (const Row& warning : row["warnings"])
        writeField("warning", wrapped(printable(cellText(warning["text"])), labelWidth + 2));
}

void ExplanationOutput::writeModules(const Row& modules)
{
    for (const Row& module : modules) {
        const bool claims = module["claim"] != 0;
        const std::string claim = cellText(module["claim"]);
        m_output.write("  " + padded(cellText(module["module"]), labelWidth) +
                       padded(std::string(2 - claim.size(), ' ') + claim, 4) +
                       (claims ? "claims it          " : "does not claim it  ") + "(prefix " +
                       prefixList(module["prefixes"]) + ")\n");
    }
}

void ExplanationOutput::writeAnswer(const Row& row)
{
    if (row["owner"].is_null()) {
        writeField("owner", "- (nobody claims this path)");
        return;
    }
    writeField("owner", cellText(row["owner"]) + " (" + cellText(row["rule"]) + ")");
    writeField("partition", cellText(row["partition"]));
    writeField("disk", printable(cellText(row["disk"])));
    if (row["partition"])
        writeField("partnum", row["partnum"].is_null() ? "- (this driver does not read it back)"
                                                       : cellText(row["partnum"]));
}

void ExplanationOutput::writeField(const char* label, std::string_view text)
{
    m_output.write("  " + padded(label, labelWidth) + std::string(text) + '\n');
}

} // namespace command
