#ifndef CLOSED_STANDARD_H
#define CLOSED_STANDARD_H

#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

/// Closes some of stdin, stdout and stderr while it lives.
class ClosedStandard {
public:
    explicit ClosedStandard(const std::vector<int>& numbers)
    {
        for (const int number : numbers) {
            m_kept.emplace_back(number, fcntl(number, F_DUPFD_CLOEXEC, 100));
            close(number);
        }
    }
    ClosedStandard(const ClosedStandard&) = delete;
    ClosedStandard& operator=(const ClosedStandard&) = delete;
    ~ClosedStandard()
    {
        for (const auto& [number, kept] : m_kept) {
            dup2(kept, number);
            close(kept);
        }
    }

    /// Those of 0, 1 and 2 that are open.
    static std::vector<int> open()
    {
        std::vector<int> numbers;
        for (int number = 0; number < 3; ++number) {
            if (fcntl(number, F_GETFD) >= 0)
                numbers.push_back(number);
        }
        return numbers;
    }

private:
    std::vector<std::pair<int, int>> m_kept;
};

#endif
