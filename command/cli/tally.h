#ifndef CLI_TALLY_H
#define CLI_TALLY_H

#include <cstddef>

namespace command {

/// Counts answers for the exit status.
class Tally {
public:
    void count(bool isClaimed) { ++(isClaimed ? m_claimed : m_unclaimed); }

    /// 0 when every path is claimed, 32 when none is, else 64.
    int exitStatus() const
    {
        if (m_unclaimed == 0)
            return 0;
        return m_claimed == 0 ? 32 : 64;
    }

private:
    std::size_t m_claimed = 0;
    std::size_t m_unclaimed = 0;
};

} // namespace command

#endif
