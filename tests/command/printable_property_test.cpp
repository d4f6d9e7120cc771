// No bytes, whatever they are, steer a terminal or forge a line through any form of output.
#include "command/printable.h"

#include <clocale>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "captured_output.h"
#include "command/doctor/finding_output.h"
#include "command/explanation_output.h"
#include "command/json_output.h"
#include "command/progress_text.h"
#include "command/raw_output.h"
#include "command/table_output.h"
#include "tests/support/harmless_text.h"
#include "tests/support/hostile_text.h"

namespace {

using namespace command;

const std::vector<Column> columns{{"NAME", "name"}, {"DISK", "disk"}};

/// Calls `check` in locales that know all characters and no other than ASCII.
template <class Check>
void inEachLocale(const Check& check)
{
    for (const char* locale : {"C.UTF-8", "C"}) {
        RC_ASSERT(std::setlocale(LC_CTYPE, locale) != nullptr);
        check();
    }
}

template <class Writer>
std::string written(Writer&& writer, CapturedOutput& output, const Row& row)
{
    writer.write(row);
    writer.finish();
    return output.text();
}

Row rowOf(const std::string& text)
{
    return {{"name", text}, {"disk", text}};
}

RC_GTEST_PROP(HostileText, IsHarmlessOncePrintable, ())
{
    const std::string text = *hostileText();
    inEachLocale([&] { RC_ASSERT(isHarmless(printable(text))); });
    RC_ASSERT(isHarmless(printableWord(text)));
}

RC_GTEST_PROP(HostileText, IsHarmlessInATable, ())
{
    const std::string text = *hostileText();
    inEachLocale([&] {
        CapturedOutput output;
        TableOutput table(output.stream(), columns, true);
        RC_ASSERT(isHarmlessLines(written(table, output, rowOf(text)), 2));
    });
}

RC_GTEST_PROP(HostileText, IsHarmlessInRawOutput, ())
{
    CapturedOutput output;
    RawOutput raw(output.stream(), columns, true);
    RC_ASSERT(isHarmlessLines(written(raw, output, rowOf(*hostileText())), 2));
}

RC_GTEST_PROP(HostileText, IsHarmlessInJson, ())
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "devices", columns);
    RC_ASSERT(isHarmlessLines(written(json, output, rowOf(*hostileText())), 9));
}

RC_GTEST_PROP(HostileText, LosesNothingInJsonButBytesThatAreNotUtf8, ())
{
    const Row document = *hostileText();
    const std::string unescaped = document.dump(-1, ' ', false, Row::error_handler_t::replace);
    RC_ASSERT(Row::parse(jsonText(document)) == Row::parse(unescaped));
}

RC_GTEST_PROP(HostileText, IsHarmlessInAnExplanation, ())
{
    const std::string text = *hostileText();
    const Row row{{"name", text},
                  {"modules", Row::array()},
                  {"owner", "native"},
                  {"rule", "only claim"},
                  {"partition", false},
                  {"disk", text},
                  {"warnings", Row::array()}};
    inEachLocale([&] {
        CapturedOutput output;
        RC_ASSERT(isHarmlessLines(written(ExplanationOutput(output.stream()), output, row), 4));
    });
}

RC_GTEST_PROP(HostileText, IsHarmlessInAFinding, ())
{
    const std::string text = *hostileText();
    inEachLocale([&] {
        const std::string lines =
            findingText({Finding::State::error, text, text, text, text + "command"});
        const auto count = static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
        RC_ASSERT(isHarmlessLines(lines, count));
    });
}

RC_GTEST_PROP(HostileText, IsHarmlessInTheProgress, ())
{
    const std::string text = *hostileText();
    const Timeline::Clock::time_point now{};
    RC_ASSERT(isHarmless(progressText({0, 1, Activity{text, 1, text, false, now, now}}, now)));
}

} // namespace
