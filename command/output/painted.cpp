#include "output/painted.h"

#include <string_view>

namespace command {

namespace {

/// The control sequence of ECMA-48 that switches the colour on; empty for plain text.
std::string_view sequenceOf(Tone tone)
{
    switch (tone) {
    case Tone::heading:
        return "\x1b[1m"; // bold
    case Tone::good:
        return "\x1b[32m"; // green
    case Tone::note:
        return "\x1b[36m"; // cyan
    case Tone::warning:
        return "\x1b[33m"; // yellow
    case Tone::bad:
        return "\x1b[1;31m"; // bold red
    default:
        return "";
    }
}

} // namespace

std::string painted(const std::string& text, Tone tone, const OutputStream& output)
{
    const std::string_view sequence = sequenceOf(tone);
    if (sequence.empty() || text.empty() || !output.isColored())
        return text;
    return std::string(sequence) + text + "\x1b[0m";
}

Tone toneOf(const Field& field)
{
    if (const auto* mark = std::get_if<Mark>(&field))
        return mark->tone;
    const auto* flag = std::get_if<Flag>(&field);
    return flag == nullptr ? Tone::plain : flag->tone;
}

} // namespace command
