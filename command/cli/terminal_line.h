#ifndef CLI_TERMINAL_LINE_H
#define CLI_TERMINAL_LINE_H

#include <chrono>
#include <mutex>
#include <string>

namespace command {

/// The last line of a terminal, for a text that changes. Safe between threads.
class TerminalLine {
public:
    /// The caller keeps `descriptor`. Nothing is ever written unless it is a terminal.
    explicit TerminalLine(int descriptor);

    /// Replaces the line by `text`, which is printable ASCII, cut to the terminal's width.
    void show(const std::string& text);

    /// Clears the line, so that other output can be written.
    void erase();

    /// Clears the line and ignores later texts. Gives up when another thread hangs in its write to
    /// the terminal for 100 ms.
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
