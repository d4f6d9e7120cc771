// No sequence of bytes steers a terminal or forges a line in any form of output.
#include "text/printable.h"

#include <clocale>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

#include "active/progress_text.h"
#include "doctor/finding_output.h"
#include "names/explanation_writer.h"
#include "output/json_output.h"
#include "output/raw_output.h"
#include "output/table_output.h"
#include "tests/command/output/captured_output.h"
#include "tests/support/harmless_text.h"
#include "tests/support/hostile_text.h"
#include "text/utf8.h"

namespace {

using namespace command;

const std::vector<Heading> headings{{"NAME"}, {"DISK"}};

/// Calls `check` in a locale with all characters, and in a locale with ASCII only.
template <class Check>
void inEachLocale(const Check& check)
{
    for (const char* locale : {"C.UTF-8", "C"}) {
        RC_ASSERT(std::setlocale(LC_CTYPE, locale) != nullptr);
        check();
    }
}

template <class Writer, class Answer>
std::string written(Writer&& writer, CapturedOutput& output, const Answer& answer)
{
    writer.write(answer);
    writer.finish();
    return output.text();
}

Row rowOf(const std::string& text)
{
    return {text, text};
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
        TableOutput table(output.stream(), headings, true);
        RC_ASSERT(isHarmlessLines(written(table, output, rowOf(text)), 2));
    });
}

RC_GTEST_PROP(HostileText, IsHarmlessInRawOutput, ())
{
    CapturedOutput output;
    RawOutput raw(output.stream(), headings);
    RC_ASSERT(isHarmlessLines(written(raw, output, rowOf(*hostileText())), 2));
}

RC_GTEST_PROP(HostileText, IsHarmlessInJson, ())
{
    CapturedOutput output;
    JsonOutput json(output.stream(), "devices", headings);
    const std::string text = *hostileText();
    const std::size_t lines = isUtf8(text) ? 9 : 11; // with two members that lose nothing
    RC_ASSERT(isHarmlessLines(written(json, output, rowOf(text)), lines));
}

RC_GTEST_PROP(HostileText, LosesNothingInJsonButBytesThatAreNotUtf8, ())
{
    const std::string text = *hostileText();
    const std::string unescaped = nlohmann::ordered_json(text).dump(
        -1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    RC_ASSERT(nlohmann::ordered_json::parse(jsonLine(text)) ==
              nlohmann::ordered_json::parse(unescaped));
}

RC_GTEST_PROP(HostileText, IsHarmlessInAnExplanation, ())
{
    const std::string text = *hostileText();
    const Explanation explanation{
        {text, &drivers().front(), CLAIM_DEFAULT, false, text, {}}, "only claim", {}, {}};
    inEachLocale([&] {
        CapturedOutput output;
        RC_ASSERT(isHarmlessLines(
            written(ExplanationWriter(Form::text, output.stream()), output, explanation), 4));
    });
}

RC_GTEST_PROP(HostileText, IsHarmlessInAFinding, ())
{
    const std::string text = *hostileText();
    inEachLocale([&] {
        CapturedOutput output;
        const std::string lines = findingText(
            {command::Code::noPath, text, text, text, text + "command"}, output.stream());
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
