#ifndef KOVM_RETRY_POLICY_H
#define KOVM_RETRY_POLICY_H

#include <chrono>

namespace kovm {

/// How often a lookup is repeated when it does not find a disk's node.
struct RetryPolicy {
    int attempts;
    std::chrono::seconds pause; // after each attempt that failed, the last one too
};

inline constexpr RetryPolicy waitingPolicy{4, std::chrono::seconds(5)};
inline constexpr RetryPolicy refreshingPolicy{4, std::chrono::seconds(10)};

/// The policy of a lookup that waits, or refreshes.
constexpr const RetryPolicy& retryPolicy(bool refresh)
{
    return refresh ? refreshingPolicy : waitingPolicy;
}

} // namespace kovm

#endif
