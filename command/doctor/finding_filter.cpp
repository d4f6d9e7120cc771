#include "doctor/finding_filter.h"

#include <algorithm>
#include <optional>

#include "cli/usage_error.h"

namespace command {

namespace {

/// list = code { "," code }
std::bitset<codeCount> codesIn(const std::string& list)
{
    std::bitset<codeCount> codes;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, end - begin);
        const std::optional<Code> code = codeNamed(name);
        if (!code)
            throw UsageError("'" + name +
                                 "' is no code of a finding; 'dmpclaim doctor --codes' "
                                 "lists them",
                             "doctor");
        codes.set(static_cast<std::size_t>(*code));
        begin = end + 1;
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
