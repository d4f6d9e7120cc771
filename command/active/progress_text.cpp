#include "active/progress_text.h"

#include <algorithm>

#include "active/short_command.h"
#include "text/printable.h"

namespace command {

namespace {

constexpr std::size_t barWidth = 20;

long wholeSeconds(Timeline::Clock::duration duration)
{
    return std::max(0L,
                    static_cast<long>(std::chrono::ceil<std::chrono::seconds>(duration).count()));
}

/// The end of a long path, so that the rest of the line fits.
std::string shortPath(const std::string& path)
{
    constexpr std::size_t longest = 40;
    const std::string word = printableWord(path);
    return word.size() <= longest ? word : "..." + word.substr(word.size() - (longest - 3));
}

std::string stepText(const Activity& activity, const kovm::RetryPolicy& policy,
                     Timeline::Clock::time_point now)
{
    const Timeline::Clock::duration passed = now - activity.stepBegin;
    if (!activity.command.empty())
        return ", running " + shortCommand(activity.command) + " for " +
               std::to_string(std::chrono::duration_cast<std::chrono::seconds>(passed).count()) +
               " s";
    if (!activity.isWaiting)
        return "";
    return (activity.attempt < policy.attempts ? ", next one in " : ", pause of ") +
           std::to_string(wholeSeconds(policy.pause - passed)) + " s";
}

/// "16 of 64" after its bar; "16 done" when the total is unknown.
std::string countText(std::size_t done, const std::optional<std::size_t>& total)
{
    if (!total)
        return std::to_string(done) + " done";
    const std::size_t filled = barWidth * done / *total;
    return "[" + std::string(filled, '#') + std::string(barWidth - filled, '.') + "] " +
           std::to_string(done) + " of " + std::to_string(*total);
}

} // namespace

std::string progressText(const Progress& progress, Timeline::Clock::time_point now)
{
    std::string text;
    if (progress.total != 1)
        text = countText(progress.done, progress.total);
    if (!progress.longest)
        return text;
    const Activity& activity = *progress.longest;
    const int attempts = progress.policy.attempts;
    return text + (text.empty() ? "" : ", ") + shortPath(activity.path) + ": attempt " +
           std::to_string(std::min(activity.attempt, attempts)) + " of " +
           std::to_string(attempts) + stepText(activity, progress.policy, now);
}

} // namespace command
