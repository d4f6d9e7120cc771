#ifndef DOCTOR_FINDING_FILTER_H
#define DOCTOR_FINDING_FILTER_H

#include <bitset>
#include <string>

#include "doctor/finding_codes.h"

namespace command {

/// Which findings the user wants.
class FindingFilter {
public:
    /// `codes` are names of codes, separated by commas. Throws UsageError when one is no code.
    void setOnly(const std::string& codes);
    void ignore(const std::string& codes);

    /// Leaves out what is neither a warning nor an error.
    void setQuiet() { m_least = Severity::warning; }

    bool passes(Code code) const;

private:
    std::bitset<codeCount> m_wanted = std::bitset<codeCount>().set();
    Severity m_least = Severity::ok;
};

} // namespace command

#endif
