#include "active/outcome.h"

#include <algorithm>

namespace command {

const std::vector<OutcomeCode>& outcomeCodes()
{
    using Code = Outcome::Code;
    static const std::vector<OutcomeCode> codes{
        {Code::confirmed, {"confirmed", Tone::good}, "the volume manager named this path"},
        {Code::noPath, {"no-path", Tone::bad}, "no path of the disk's node is enabled"},
        {Code::noTable, {"no-table", Tone::bad}, "a tool printed something else than a table"},
        {Code::toolFailed,
         {"tool-failed", Tone::bad},
         "a tool could not be run, failed or printed too much"},
        {Code::notFound,
         {"not-found", Tone::warning},
         "the volume manager does not know the disk, or its node"},
        {Code::notInstalled,
         {"not-installed", Tone::warning},
         "/usr/sbin/kodmpadm is missing, or may not be executed"},
        {Code::notAsked,
         {"not-asked", Tone::plain},
         "the path is another driver's, or the tools would misread it"},
        {Code::notClaimed, {"not-claimed", Tone::plain}, "no driver claims the path"},
        {Code::timedOut, {"timed-out", Tone::bad}, "the --timeout passed"},
    };
    return codes;
}

Mark markOf(Outcome::Code code)
{
    const std::vector<OutcomeCode>& codes = outcomeCodes();
    return std::find_if(codes.begin(), codes.end(),
                        [code](const OutcomeCode& known) { return known.code == code; })
        ->mark;
}

} // namespace command
