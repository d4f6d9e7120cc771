#include "paths/watch.h"

#include <algorithm>
#include <charconv>
#include <ctime>

#include "cli/answer_writer.h"
#include "cli/complaint.h"
#include "cli/usage_error.h"
#include "text/wrapped.h"

namespace command {

namespace {

using Rows = std::vector<const PathAnswer*>;

constexpr double leastSeconds = 0.1;
constexpr double mostSeconds = 24 * 60 * 60;

// The cursor goes home and the screen is cleared; long lines are cut while the screen is drawn, so
// that each row takes one line.
constexpr char beginScreen[] = "\x1b[H\x1b[2J\x1b[?7l";
constexpr char endScreen[] = "\x1b[?7h";

/// The local time of day:  14:02:07
std::string timeOfDay(const Moment& now)
{
    const std::time_t time = std::chrono::system_clock::to_time_t(now.time);
    std::tm parts{};
    localtime_r(&time, &parts);
    char text[16];
    return std::string(text, std::strftime(text, sizeof text, "%H:%M:%S", &parts));
}

Rows pointersTo(const std::vector<PathAnswer>& answers)
{
    Rows rows;
    for (const PathAnswer& answer : answers)
        rows.push_back(&answer);
    return rows;
}

/// The rows that fit. When some do not, those that changed last come first, so that a failover is
/// seen.
Rows visible(Rows rows, std::size_t room)
{
    if (rows.size() <= room)
        return rows;
    const auto timeOf = [](const PathAnswer* row) {
        return row->change == nullptr ? std::chrono::system_clock::time_point() : row->change->time;
    };
    std::stable_sort(rows.begin(), rows.end(), [&](const PathAnswer* a, const PathAnswer* b) {
        return timeOf(a) > timeOf(b);
    });
    rows.resize(room);
    return rows;
}

void rejectOtherForms(Form form)
{
    for (const auto& [other, name] :
         {std::pair(Form::raw, "--raw"), std::pair(Form::pairs, "--pairs"),
          std::pair(Form::zero, "--zero"), std::pair(Form::json, "--json")}) {
        if (form == other)
            throw UsageError(std::string(watchOption) +
                             " draws a table on a terminal and writes lines of JSON elsewhere: "
                             "leave out " +
                             name);
    }
}

} // namespace

std::optional<std::chrono::milliseconds> watchInterval(const Options& options)
{
    const std::optional<std::string> text = options.value(watchOption);
    if (!text)
        return std::nullopt;
    rejectOtherForms(options.form);
    double seconds = 0;
    const char* end = text->data() + text->size();
    const auto result = std::from_chars(text->data(), end, seconds, std::chars_format::fixed);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    // Both comparisons are false for NaN.
    const bool isInterval = isNumber && seconds >= leastSeconds && seconds <= mostSeconds;
    if (!isInterval)
        throw UsageError(std::string(watchOption) +
                         " takes a number of seconds from 0.1 to 86400, not '" + *text + "'");
    return std::chrono::milliseconds(static_cast<long>(seconds * 1000));
}

void WatchOutput::show(const DiskList& list, const Moment& now)
{
    const PathHistory::Rows rows = m_history.take(list.disks, now);
    if (m_output.isTerminal() && m_options.form == Form::table)
        redraw(list, rows.all, now);
    else
        writeChanges(list, rows.changed);
}

void WatchOutput::redraw(const DiskList& list, const std::vector<PathAnswer>& rows,
                         const Moment& now)
{
    std::string notes;
    for (const std::string& note : list.notes)
        notes += wrapped(note, 0, m_output.width()) + '\n';
    const auto noteLines = static_cast<std::size_t>(std::count(notes.begin(), notes.end(), '\n'));
    const Rows shown = visible(pointersTo(rows), roomFor(noteLines));
    // An interrupt meanwhile leaves a terminal that wraps lines again.
    m_output.write(beginScreen + timeOfDay(now) + "  " + std::to_string(rows.size()) + " paths\n",
                   endScreen);
    writeRows(Form::table, shown);
    if (shown.size() < rows.size())
        notes = std::to_string(rows.size() - shown.size()) +
                " more paths; to see fewer, name their disks\n" + notes;
    m_output.write(notes + endScreen, "");
    m_output.flush();
}

/// The lines of the terminal without those for the time, the headings, the number of rows that are
/// left out, the notes and the cursor.
std::size_t WatchOutput::roomFor(std::size_t noteLines) const
{
    constexpr std::size_t otherLines = 4;
    const std::size_t height = m_output.height();
    return height > otherLines + noteLines ? height - otherLines - noteLines : 1;
}

void WatchOutput::writeChanges(const DiskList& list, const std::vector<PathAnswer>& rows)
{
    if (list.notes != m_notes) {
        for (const std::string& note : list.notes)
            complain(note);
        m_notes = list.notes;
    }
    writeRows(Form::jsonLines, pointersTo(rows));
}

void WatchOutput::writeRows(Form form, const Rows& rows)
{
    Options options = m_options;
    options.form = form;
    AnswerRows<PathAnswer> writer(options, m_output, "paths", pathColumns(true));
    for (const PathAnswer* row : rows)
        writer.write(*row);
    writer.finish();
}

} // namespace command
