#include "row_writer.h"

#include <cstdio>

#include "shell_word.h"

namespace {

using command::Row;

std::string secondsText(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    return text;
}

std::string stepText(const Row& step)
{
    if (step.contains("wait"))
        return "wait (" + secondsText(step["wait"]) + " s)";
    const Row& result = step["result"];
    return command::shellCommand(step["command"]) + " (" + secondsText(step["seconds"]) + " s, " +
           (result.is_null() ? "not run" : std::to_string(result.get<int>())) + ")";
}

std::string timelineText(const Row& timeline)
{
    std::string text;
    for (const Row& step : timeline)
        text += (text.empty() ? "" : "; ") + stepText(step);
    return text;
}

} // namespace

namespace command {

std::string cellText(const Row& field)
{
    if (field.is_null())
        return "-";
    if (field.is_boolean())
        return field.get<bool>() ? "yes" : "no";
    if (field.is_number_float())
        return secondsText(field.get<double>());
    if (field.is_array())
        return timelineText(field);
    if (field.is_number())
        return std::to_string(field.get<unsigned int>());
    return field.get<std::string>();
}

std::string cellText(const Row& row, const Column& column)
{
    const Row& field = row.at(column.key);
    return column.kind == Column::Kind::command && field.is_string() ? shellCommand(field)
                                                                     : cellText(field);
}

} // namespace command
