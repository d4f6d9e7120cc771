#ifndef OUTPUT_OUTPUT_STREAM_H
#define OUTPUT_OUTPUT_STREAM_H

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace command {

/// Where the answers go, through a buffer. On a terminal, each write is seen at once. Every
/// operation but `end` throws std::system_error when the descriptor cannot be written.
///
/// Safe between threads: `end` is for a signal thread, the others are for the thread that answers.
class OutputStream {
public:
    /// The caller keeps `descriptor`. What is not flushed is lost.
    explicit OutputStream(int descriptor);

    bool isTerminal() const { return m_isTerminal; }

    /// The columns of a line of text: the terminal's; 79 without a terminal.
    std::size_t width() const;

    /// The lines of the terminal; 24 without one.
    std::size_t height() const;

    /// Waits for the time. Returns false, at once, when nobody can read the output any more.
    bool wait(std::chrono::milliseconds time) const;

    /// Whether words get colours. They get none at first.
    bool isColored() const { return m_isColored; }
    void setColored(bool isColored) { m_isColored = isColored; }

    void write(std::string_view bytes);

    /// Writes `bytes`. From now on, `ending` is what `end` adds to make the output whole.
    void write(std::string_view bytes, std::string ending);

    /// Writes out what is buffered.
    void flush();

    /// Ends the output early: adds the ending and writes out what is buffered, unless the
    /// descriptor takes no more for `patience`. Later writes are ignored.
    void end(std::chrono::milliseconds patience = endPatience) noexcept;

    /// A reader that is there takes what is left in less time.
    static constexpr std::chrono::milliseconds endPatience{500};

private:
    void add(std::string_view bytes);
    void drain();
    [[noreturn]] void fail();

    int m_descriptor;
    bool m_isTerminal;
    bool m_isColored = false;
    bool m_hasEnded = false;
    std::timed_mutex m_mutex;
    std::string m_buffer;
    std::string m_ending;
};

} // namespace command

#endif
