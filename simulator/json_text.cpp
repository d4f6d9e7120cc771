#include "json_text.h"

namespace simulator {

namespace {

constexpr std::size_t lineLength = 100;

/// Joins the elements of an object or array, each written by `write`.
template <class Write>
std::string joined(const Json& value, const std::string& separator, Write write)
{
    std::string text;
    for (const auto& [key, element] : value.items()) {
        if (!text.empty())
            text += separator;
        if (value.is_object())
            text += Json(key).dump() + ": ";
        text += write(element);
    }
    return text;
}

std::string oneLine(const Json& value)
{
    if (!value.is_structured())
        return value.dump();
    const std::string elements = joined(value, ", ", oneLine);
    return value.is_object() ? "{" + elements + "}" : "[" + elements + "]";
}

} // namespace

std::string jsonText(const Json& value, std::size_t indent)
{
    std::string text = oneLine(value);
    if (!value.is_structured() || value.empty() || indent + text.size() <= lineLength)
        return text;
    const std::string newline = "\n" + std::string(indent + 2, ' ');
    const std::string elements = joined(value, "," + newline, [indent](const Json& element) {
        return jsonText(element, indent + 2);
    });
    text = newline + elements + "\n" + std::string(indent, ' ');
    return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

} // namespace simulator
