#include "output/cell_text.h"

#include <cstdio>

#include "text/shell_word.h"
#include "text/word_list.h"

namespace command {

namespace {

std::string secondsText(Seconds seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds.count());
    return text;
}

std::string stepText(const Step& step)
{
    if (step.command.empty())
        return "wait (" + secondsText(step.duration) + " s)";
    return shellCommand(step.command) + " (" + secondsText(step.duration) + " s, " +
           (step.result ? std::to_string(*step.result) : "not run") + ")";
}

struct CellText {
    std::string operator()(std::monostate /*none*/) const { return "-"; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(Seconds value) const { return secondsText(value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const CommandLine& value) const { return shellCommand(value.text); }
    std::string operator()(const Mark& mark) const { return mark.text; }
    std::string operator()(Flag flag) const { return (*this)(flag.isSet); }

    std::string operator()(const Texts& texts) const
    {
        return texts.empty() ? (*this)(std::monostate()) : joined(texts, ",");
    }

    std::string operator()(const Steps& steps) const
    {
        std::vector<std::string> texts;
        for (const Step& step : steps)
            texts.push_back(stepText(step));
        return joined(texts, "; ");
    }
};

} // namespace

bool isNone(const Field& field)
{
    const auto* texts = std::get_if<Texts>(&field);
    return std::holds_alternative<std::monostate>(field) || (texts != nullptr && texts->empty());
}

std::string cellText(const Field& field)
{
    return std::visit(CellText(), field);
}

} // namespace command
