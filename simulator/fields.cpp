#include "fields.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "error.h"

namespace simulator {

Fields::Fields(const Json& object, std::string where) : m_object(object), m_where(std::move(where))
{
    if (!object.is_object())
        throw Error((m_where.empty() ? "the whole" : m_where) + " is not an object");
}

const Json* Fields::find(const char* key)
{
    m_known.emplace_back(key);
    const auto found = m_object.find(key);
    return found == m_object.end() ? nullptr : &*found;
}

std::string Fields::text(const char* key)
{
    return textOf(key, require(key));
}

std::string Fields::text(const char* key, const char* fallback)
{
    const Json* value = find(key);
    return value != nullptr ? textOf(key, *value) : fallback;
}

std::string Fields::word(const char* key)
{
    return wordOf(key, text(key));
}

std::string Fields::word(const char* key, const char* fallback)
{
    const Json* value = find(key);
    return value != nullptr ? wordOf(key, textOf(key, *value)) : fallback;
}

unsigned Fields::number(const char* key)
{
    require(key);
    return number(key, 0);
}

unsigned Fields::number(const char* key, unsigned fallback, unsigned least, unsigned most)
{
    const Json* value = find(key);
    if (value == nullptr)
        return fallback;
    if (!value->is_number_unsigned() || *value < least || *value > most)
        refuse(key, "is not a whole number from " + std::to_string(least) + " to " +
                        std::to_string(most));
    return value->get<unsigned>();
}

bool Fields::flag(const char* key)
{
    const Json* value = find(key);
    if (value != nullptr && !value->is_boolean())
        refuse(key, "is neither true nor false");
    return value != nullptr && value->get<bool>();
}

std::optional<Fields> Fields::object(const char* key)
{
    const Json* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    return Fields(*value, place(key));
}

std::map<std::string, unsigned> Fields::counts(const char* key)
{
    std::map<std::string, unsigned> counts;
    std::optional<Fields> numbers = object(key);
    if (!numbers)
        return counts;
    for (const auto& [name, value] : numbers->m_object.items())
        counts[name] = numbers->number(name.c_str(), 0, 0, std::numeric_limits<unsigned>::max());
    return counts;
}

void Fields::finish() const
{
    for (const auto& [key, value] : m_object.items()) {
        if (std::find(m_known.begin(), m_known.end(), key) == m_known.end())
            refuse(key, "is no field that is known here");
    }
}

void Fields::refuse(const std::string& key, const std::string& message) const
{
    throw Error(place(key) + " " + message);
}

const Json& Fields::require(const char* key)
{
    const Json* value = find(key);
    if (value == nullptr)
        refuse(key, "is missing");
    return *value;
}

const Json& Fields::array(const char* key)
{
    static const Json none = Json::array();
    const Json* value = find(key);
    if (value != nullptr && !value->is_array())
        refuse(key, "is not an array");
    return value != nullptr ? *value : none;
}

std::string Fields::place(const std::string& key) const
{
    return m_where.empty() ? key : m_where + "." + key;
}

std::string Fields::textOf(const char* key, const Json& value) const
{
    if (!value.is_string())
        refuse(key, "is not a text");
    return value.get<std::string>();
}

std::string Fields::wordOf(const char* key, std::string value) const
{
    if (value.empty() || value.find_first_of(" \t\r\n\v\f") != std::string::npos)
        refuse(key, "is empty or holds white space");
    return value;
}

} // namespace simulator
