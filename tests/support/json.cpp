#include "tests/support/json.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

namespace {

using Document = nlohmann::ordered_json;

Json valueOf(const Document& parsed)
{
    if (parsed.is_object()) {
        Json object = Json::object();
        for (const auto& [name, member] : parsed.items())
            object[name] = valueOf(member);
        return object;
    }
    if (parsed.is_array()) {
        std::vector<Json> elements;
        for (const Document& element : parsed)
            elements.push_back(valueOf(element));
        return elements;
    }
    if (parsed.is_string())
        return parsed.get<std::string>();
    if (parsed.is_boolean())
        return parsed.get<bool>();
    if (parsed.is_number_integer())
        return parsed.get<std::int64_t>();
    return parsed.is_number() ? Json(parsed.get<double>()) : Json();
}

} // namespace

Json::Json(std::string text) : m_kind(Kind::text), m_text(std::move(text)) {}

Json::Json(const std::vector<std::string>& texts)
    : m_kind(Kind::array), m_values(texts.begin(), texts.end())
{}

Json::Json(std::vector<Json> elements) : m_kind(Kind::array), m_values(std::move(elements)) {}

Json::Json(std::initializer_list<Json> values)
{
    const bool isObject =
        std::all_of(values.begin(), values.end(), [](const Json& value) { return value.isPair(); });
    m_kind = isObject ? Kind::object : Kind::array;
    for (const Json& value : values) {
        if (isObject)
            m_names.push_back(value.m_values[0].m_text);
        m_values.push_back(isObject ? value.m_values[1] : value);
    }
}

Json Json::object()
{
    Json object;
    object.m_kind = Kind::object;
    return object;
}

Json Json::parse(const std::string& text)
{
    return valueOf(Document::parse(text));
}

bool Json::accept(const std::string& text)
{
    return Document::accept(text);
}

std::string Json::dump() const
{
    switch (m_kind) {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return m_integer != 0 ? "true" : "false";
    case Kind::integer:
        return std::to_string(m_integer);
    case Kind::real:
        return Document(m_real).dump();
    case Kind::text:
        return Document(m_text).dump();
    case Kind::array:
    case Kind::object:
        break;
    }
    std::string items;
    for (std::size_t i = 0; i < size(); ++i) {
        const std::string name = isArray() ? "" : Document(m_names[i]).dump() + ':';
        items += (i == 0 ? "" : ",") + name + m_values[i].dump();
    }
    return isArray() ? '[' + items + ']' : '{' + items + '}';
}

const std::string& Json::text() const
{
    if (!isText())
        throw std::runtime_error("no text: " + dump());
    return m_text;
}

double Json::number() const
{
    if (m_kind != Kind::integer && m_kind != Kind::real)
        throw std::runtime_error("no number: " + dump());
    return isReal() ? m_real : static_cast<double>(m_integer);
}

const Json& Json::operator[](const std::string& name) const
{
    if (!contains(name))
        throw std::out_of_range("no member " + name + " in " + dump());
    return m_values[positionOf(name)];
}

Json& Json::operator[](const std::string& name)
{
    become(Kind::object);
    const std::size_t position = positionOf(name);
    if (position == size()) {
        m_names.push_back(name);
        m_values.emplace_back();
    }
    return m_values[position];
}

bool Json::contains(const std::string& name) const
{
    return positionOf(name) < m_names.size();
}

void Json::push_back(Json element)
{
    become(Kind::array);
    m_values.push_back(std::move(element));
}

void Json::become(Kind kind)
{
    if (m_kind == Kind::null)
        m_kind = kind;
    if (m_kind != kind)
        throw std::runtime_error("another kind of value: " + dump());
}

std::size_t Json::positionOf(const std::string& name) const
{
    const auto found = std::find(m_names.begin(), m_names.end(), name);
    return static_cast<std::size_t>(found - m_names.begin());
}

bool Json::isPair() const
{
    return isArray() && size() == 2 && m_values[0].isText();
}

bool operator==(const Json& left, const Json& right)
{
    using Kind = Json::Kind;
    const auto isNumber = [](const Json& value) {
        return value.m_kind == Kind::integer || value.m_kind == Kind::real;
    };
    if (isNumber(left) && isNumber(right) && left.m_kind != right.m_kind)
        return left.number() == right.number();
    return left.m_kind == right.m_kind && left.m_integer == right.m_integer &&
           left.m_real == right.m_real && left.m_text == right.m_text &&
           left.m_names == right.m_names && left.m_values == right.m_values;
}
