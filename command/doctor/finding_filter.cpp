#include "doctor/finding_filter.h"

#include <optional>

#include "cli/usage_error.h"
#include "text/word_list.h"

namespace command {

namespace {

std::bitset<codeCount> codesIn(const std::string& list)
{
    std::bitset<codeCount> codes;
    for (const std::string& name : splitAtCommas(list)) {
        const std::optional<Code> code = codeNamed(name);
        if (!code)
            throw UsageError("'" + name +
                                 "' is no code of a finding; 'dmpclaim doctor --codes' "
                                 "lists them",
                             "doctor");
        codes.set(static_cast<std::size_t>(*code));
    }
    return codes;
}

} // namespace

void FindingFilter::setOnly(const std::string& codes)
{
    m_wanted &= codesIn(codes);
}

void FindingFilter::ignore(const std::string& codes)
{
    m_wanted &= ~codesIn(codes);
}

bool FindingFilter::passes(Code code) const
{
    return m_wanted.test(static_cast<std::size_t>(code)) && factsOf(code).severity >= m_least;
}

} // namespace command
