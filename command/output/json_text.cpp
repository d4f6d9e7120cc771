#include "output/json_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "text/printable.h"
#include "text/utf8.h"

namespace command {

namespace {

constexpr char rawSuffix[] = "_raw";

/// Characters that stand for themselves in a JSON text.
bool isPlain(char character)
{
    return character >= ' ' && character <= '~' && character != '"' && character != '\\';
}

/// The letter behind the backslash; NUL for a character that has none.
char shortEscape(char32_t code)
{
    switch (code) {
    case '"':
    case '\\':
        return static_cast<char>(code);
    case '\b':
        return 'b';
    case '\t':
        return 't';
    case '\n':
        return 'n';
    case '\f':
        return 'f';
    case '\r':
        return 'r';
    default:
        return '\0';
    }
}

/// The text of a field; null for fields that are no text.
const std::string* textOf(const Field& field)
{
    if (const auto* text = std::get_if<std::string>(&field))
        return text;
    if (const auto* command = std::get_if<CommandLine>(&field))
        return &command->text;
    return nullptr;
}

/// The field without loss, where JSON cannot hold it as it is; none for other fields.
Field rawField(const Field& field)
{
    if (const std::string* text = textOf(field))
        return isUtf8(*text) ? Field() : Field(printableWord(*text));
    const auto* texts = std::get_if<Texts>(&field);
    if (texts == nullptr || std::all_of(texts->begin(), texts->end(), isUtf8))
        return {};
    Texts words;
    for (const std::string& text : *texts)
        words.push_back(printableWord(text));
    return words;
}

} // namespace

/// Adds what a field holds.
struct JsonText::Adder {
    void operator()(std::monostate /*none*/) const { json.m_text += "null"; }
    void operator()(bool value) const { json.m_text += value ? "true" : "false"; }
    void operator()(std::int64_t value) const { json.m_text += std::to_string(value); }
    void operator()(Seconds value) const { json.addSeconds(value); }
    void operator()(const std::string& value) const { json.addText(value); }
    void operator()(const CommandLine& value) const { json.addText(value.text); }
    void operator()(const Mark& value) const { json.addText(value.text); }
    void operator()(Flag value) const { (*this)(value.isSet); }

    void operator()(const Texts& texts) const
    {
        json.beginList();
        for (const std::string& text : texts)
            json.add(Field(text));
        json.endList();
    }

    void operator()(const Steps& steps) const
    {
        json.beginList();
        for (const Step& step : steps)
            json.addStep(step);
        json.endList();
    }

    JsonText& json;
};

void JsonText::key(std::string_view key)
{
    separate();
    addText(key);
    m_text += m_isIndented ? ": " : ":";
    m_hasKey = true;
}

void JsonText::add(const Field& field)
{
    const bool hasElements =
        std::holds_alternative<Texts>(field) || std::holds_alternative<Steps>(field);
    if (!hasElements)
        separate();
    std::visit(Adder{*this}, field);
}

void JsonText::add(const Document& document)
{
    std::visit([this](const auto& value) { add(value); }, document.value());
}

void JsonText::add(const Document::List& list)
{
    beginList();
    for (const Document& element : list)
        add(element);
    endList();
}

void JsonText::add(const Document::Record& record)
{
    beginRecord();
    for (const auto& [key, value] : record)
        addMember(key, value);
    endRecord();
}

void JsonText::addMember(std::string_view key, const Field& field)
{
    this->key(key);
    add(field);
    const Field raw = rawField(field);
    if (std::holds_alternative<std::monostate>(raw))
        return;
    this->key(std::string(key) + rawSuffix);
    add(raw);
}

void JsonText::addMember(std::string_view key, const Document& document)
{
    if (const auto* field = std::get_if<Field>(&document.value())) {
        addMember(key, *field);
        return;
    }
    this->key(key);
    add(document);
}

void JsonText::begin(char bracket)
{
    separate();
    m_text += bracket;
    ++m_depth;
    m_isFirst = true;
}

void JsonText::end(char bracket)
{
    --m_depth;
    if (!m_isFirst)
        addLineBreak();
    m_text += bracket;
    m_isFirst = false;
}

/// Writes what comes between the last element and the next key or value.
void JsonText::separate()
{
    if (m_hasKey) {
        m_hasKey = false;
        return;
    }
    if (m_depth == 0)
        return;
    if (!m_isFirst)
        m_text += ',';
    addLineBreak();
    m_isFirst = false;
}

void JsonText::addLineBreak()
{
    constexpr std::size_t indent = 2;
    if (m_isIndented)
        (m_text += '\n').append(indent * m_depth, ' ');
}

void JsonText::addText(std::string_view text)
{
    m_text += '"';
    while (!text.empty()) {
        const auto plain = static_cast<std::size_t>(
            std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
        m_text += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty())
            break;
        const Utf8Character character = firstUtf8Character(text);
        addEscaped(character.code);
        text.remove_prefix(character.size);
    }
    m_text += '"';
}

void JsonText::addEscaped(char32_t code)
{
    constexpr char32_t firstOfPairs = 0x10000;
    if (code >= firstOfPairs) {
        addEscaped(0xd800 + ((code - firstOfPairs) >> 10));
        addEscaped(0xdc00 + ((code - firstOfPairs) & 0x3ff));
        return;
    }
    m_text += '\\';
    if (const char letter = shortEscape(code)) {
        m_text += letter;
        return;
    }
    char digits[8];
    std::snprintf(digits, sizeof digits, "u%04x", static_cast<unsigned int>(code));
    m_text += digits;
}

/// Rounded to milliseconds: the times of processes are no more exact than that.
void JsonText::addSeconds(Seconds seconds)
{
    char digits[32];
    const double rounded = std::round(seconds.count() * 1000) / 1000; // 0.0005 becomes 0.001
    std::snprintf(digits, sizeof digits, "%.3f", rounded);
    std::string_view number = digits;
    while (number.back() == '0' && number[number.size() - 2] != '.')
        number.remove_suffix(1);
    m_text += number;
}

void JsonText::addStep(const Step& step)
{
    beginRecord();
    if (step.command.empty()) {
        addMember("wait", Field(step.duration));
    } else {
        addMember("command", Field(step.command));
        addMember("seconds", Field(step.duration));
        addMember("result", optionalField(step.result));
    }
    endRecord();
}

std::string jsonLine(const Document& document)
{
    JsonText json(JsonText::Layout::line);
    json.add(document);
    json.endLine();
    return json.text();
}

} // namespace command
