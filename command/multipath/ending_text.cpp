#include "multipath/ending_text.h"

#include "zecmn/ending.h"

using koze_pdk_4_4::runner::Ending;

namespace command {

std::string endingText(int result, unsigned long limitSeconds, const std::string& words)
{
    const Ending ending = koze_pdk_4_4::runner::endingOf(result);
    switch (ending.kind) {
    case Ending::Kind::exited:
        return "ended with status " + std::to_string(ending.number) +
               (words.empty() ? "" : ", '" + words + "'");
    case Ending::Kind::killed:
        return "was ended by signal " + std::to_string(ending.number);
    case Ending::Kind::deadlinePassed:
        return "took more than " + std::to_string(limitSeconds) + " seconds";
    case Ending::Kind::boundExceeded:
        return "printed too much";
    default:
        return "ended, and its status was lost";
    }
}

} // namespace command
