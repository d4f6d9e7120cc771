#include "shaping.h"

#include <array>
#include <cstddef>

#include "kovm/tables.h"

namespace simulator {

namespace {

constexpr std::size_t rule = 1;
static_assert(rule + 1 == kovm::firstRow, "a table is a header, a rule and the rows");

/// Replaces each run of spaces by `separator`.
std::string separatedBy(const std::string& separator, const std::string& line)
{
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] != ' ')
            text += line[i];
        else if (i == 0 || line[i - 1] != ' ')
            text += separator;
    }
    return text;
}

void removeLine(Print& print, std::size_t index)
{
    if (index < print.lines.size())
        print.lines.erase(print.lines.begin() + static_cast<std::ptrdiff_t>(index));
}

void separate(Print& print, const std::string& separator)
{
    for (std::string& line : print.lines)
        line = separatedBy(separator, line);
}

void addBlankLines(Print& print)
{
    std::vector<std::string> spread;
    for (std::size_t i = 0; i < print.lines.size(); ++i) {
        if (i >= kovm::firstRow)
            spread.emplace_back();
        spread.push_back(print.lines[i]);
    }
    print.lines = spread;
}

void removeRule(Print& print)
{
    removeLine(print, rule);
}

void removeHeader(Print& print)
{
    removeLine(print, 0);
}

void addNote(Print& print, const std::string& note)
{
    print.lines.insert(print.lines.begin(), note);
}

void endLinesWithCarriageReturn(Print& print)
{
    print.lineEnd = "\r\n";
}

void cutShort(Print& print, unsigned bytes)
{
    print.cut = bytes;
}

void flood(Print& print, unsigned mebibytes)
{
    print.floodMib = mebibytes;
}

// These make a spoiler of a field's value. Without the field they return an empty one.

template <void (*spoil)(Print&)>
Spoiler ifTrue(Fields& fields, const char* field)
{
    return fields.flag(field) ? Spoiler(spoil) : nullptr;
}

template <void (*spoil)(Print&, const std::string&)>
Spoiler withText(Fields& fields, const char* field)
{
    const std::string text = fields.text(field, "");
    return text.empty() ? Spoiler() : [text](Print& print) { spoil(print, text); };
}

template <void (*spoil)(Print&, unsigned)>
Spoiler withNumber(Fields& fields, const char* field)
{
    if (!fields.has(field))
        return nullptr;
    return [number = fields.number(field, 0)](Print& print) { spoil(print, number); };
}

struct FaultField {
    const char* name;
    Spoiler (*read)(Fields& fields, const char* field);
};

/// All fields that spoil the output, in the order in which they are applied.
constexpr std::array faultFields = {FaultField{"separator", withText<separate>},
                                    FaultField{"blank_lines", ifTrue<addBlankLines>},
                                    FaultField{"no_rule", ifTrue<removeRule>},
                                    FaultField{"no_header", ifTrue<removeHeader>},
                                    FaultField{"note", withText<addNote>},
                                    FaultField{"crlf", ifTrue<endLinesWithCarriageReturn>},
                                    FaultField{"cut", withNumber<cutShort>},
                                    FaultField{"flood_mib", withNumber<flood>}};

} // namespace

std::string Print::text() const
{
    std::string text;
    for (const std::string& line : lines)
        text += line + lineEnd;
    return cut ? text.substr(0, *cut) : text;
}

std::vector<Spoiler> readSpoilers(Fields& fields)
{
    std::vector<Spoiler> spoilers;
    for (const FaultField& field : faultFields) {
        if (Spoiler spoiler = field.read(fields, field.name))
            spoilers.push_back(std::move(spoiler));
    }
    return spoilers;
}

} // namespace simulator
