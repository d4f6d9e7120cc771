#ifndef ACTIVE_TERMINAL_LINE_H
#define ACTIVE_TERMINAL_LINE_H

#include <chrono>
#include <mutex>
#include <string>

namespace command {

/// The last line of a terminal, for a text that changes. Safe between threads.
class TerminalLine {
public:
    /// `descriptor` stays the caller's. Unless it is a terminal, nothing is ever written.
    explicit TerminalLine(int descriptor);

    /// Puts `text`, of printable ASCII, in place of the line's, cut to the terminal's width.
    void show(const std::string& text);

    /// Empties the line for what others write.
    void erase();

    /// Empties the line for good. Waits a moment only for a terminal that takes no output.
    void close();

private:
    void write(const std::string& bytes) const;
    void eraseLocked();

    int m_descriptor;
    bool m_isTerminal;
    std::timed_mutex m_mutex;
    std::string m_text;
    bool m_isClosed = false;
};

} // namespace command

#endif
