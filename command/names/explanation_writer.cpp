#include "names/explanation_writer.h"

#include <algorithm>
#include <string_view>

#include "names/kernel_text.h"
#include "output/cell_text.h"
#include "output/painted.h"
#include "text/printable.h"
#include "text/word_list.h"
#include "text/wrapped.h"

namespace command {

namespace {

constexpr std::size_t labelWidth = 15;

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string labelled(const char* label, std::string_view text)
{
    return "  " + padded(label, labelWidth) + std::string(text) + '\n';
}

const char* claimMeaning(std::uint32_t claim)
{
    switch (claim) {
    case CLAIM_NONE:
        return "does not claim it";
    case CLAIM_DEFAULT:
        return "claims it, a 16 would win";
    case CLAIM_SECONDARY:
        return "claims it as a multipath driver";
    default:
        return "claims it";
    }
}

std::string moduleText(const ModuleAnswer& module)
{
    constexpr std::size_t widestMeaning = 33;
    const std::string claim = std::to_string(module.claim);
    return "  " + padded(module.driver->name, labelWidth) +
           padded(std::string(2 - claim.size(), ' ') + claim, 4) +
           padded(claimMeaning(module.claim), widestMeaning) + "(prefix " +
           joined(module.prefixes) + ")\n";
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

std::string factText(const LabelledText& fact, const OutputStream& output)
{
    return "  " + painted(padded(fact.label, labelWidth), fact.tone, output) +
           wrapped(printable(fact.text), labelWidth + 2, output.width()) + '\n';
}

std::string explanationText(const Explanation& explanation, const OutputStream& output)
{
    const DeviceAnswer& device = explanation.device;
    std::string text = painted(printable(device.name), Tone::heading, output) + '\n';
    if (!device.given.empty() && device.given != device.name)
        text += labelled("given as", printable(device.given));
    text += answerText(device, explanation.rule);
    for (const LabelledText& fact : kernelTexts(device))
        text += factText(fact, output);
    for (const ModuleAnswer& module : explanation.modules)
        text += moduleText(module);
    for (const Warning& warning : explanation.warnings)
        text += factText({"warning", warning.text, Tone::warning}, output);
    return text;
}

} // namespace

void ExplanationWriter::write(const Explanation& explanation)
{
    if (m_json) {
        m_json->write(explanationRecord(explanation));
        return;
    }
    m_output.write((m_isFirst ? "" : "\n") + explanationText(explanation, m_output));
    m_isFirst = false;
}

void ExplanationWriter::finish()
{
    if (m_json)
        m_json->finish();
}

} // namespace command
