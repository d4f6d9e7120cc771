#include "names/explanation_writer.h"

#include <algorithm>
#include <string_view>

#include "output/cell_text.h"
#include "text/printable.h"
#include "text/wrapped.h"

namespace command {

namespace {

constexpr std::size_t labelWidth = 15;

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string prefixList(const std::vector<std::string>& prefixes)
{
    std::string list;
    for (const std::string& prefix : prefixes)
        list += (list.empty() ? "" : ", ") + prefix;
    return list;
}

std::string labelled(const char* label, std::string_view text)
{
    return "  " + padded(label, labelWidth) + std::string(text) + '\n';
}

std::string moduleText(const ModuleAnswer& module)
{
    const std::string claim = std::to_string(module.claim);
    return "  " + padded(module.driver->name, labelWidth) +
           padded(std::string(2 - claim.size(), ' ') + claim, 4) +
           (module.claim == CLAIM_NONE ? "does not claim it  " : "claims it          ") +
           "(prefix " + prefixList(module.prefixes) + ")\n";
}

std::string answerText(const DeviceAnswer& device, const char* rule)
{
    if (device.owner == nullptr)
        return labelled("owner", "- (nobody claims this path)");
    std::string text = labelled("owner", std::string(device.owner->name) + " (" + rule + ")") +
                       labelled("partition", cellText(device.isPartition)) +
                       labelled("disk", printable(*device.disk));
    if (device.isPartition)
        text += labelled("partnum", device.partnum ? std::to_string(*device.partnum)
                                                   : "- (this driver does not read it back)");
    return text;
}

std::string explanationText(const Explanation& explanation)
{
    std::string text = printable(explanation.device.name) + '\n';
    for (const ModuleAnswer& module : explanation.modules)
        text += moduleText(module);
    text += answerText(explanation.device, explanation.rule);
    for (const Warning& warning : explanation.warnings)
        text += labelled("warning", wrapped(printable(warning.text), labelWidth + 2));
    return text;
}

} // namespace

void ExplanationWriter::write(const Explanation& explanation)
{
    if (m_isJson) {
        m_json.write(explanationRecord(explanation));
        return;
    }
    m_output.write((m_isFirst ? "" : "\n") + explanationText(explanation));
    m_isFirst = false;
}

void ExplanationWriter::finish()
{
    if (m_isJson)
        m_json.finish();
}

} // namespace command
