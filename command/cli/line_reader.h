#ifndef CLI_LINE_READER_H
#define CLI_LINE_READER_H

#include <functional>
#include <optional>
#include <string>

namespace command {

/// Reads lines from a descriptor, holding no more than the longest of them and one block.
///
///     input = { line separator } [ line ]          /dev/sda\n/dev/sdb\n
///
/// The separator is the first line feed or NUL of the input; the other character is part of the
/// lines from then on. A last line without its separator counts. Between line feeds, empty lines
/// are skipped, and a carriage return at a line's end is taken off: standard error says so once.
/// Lines between NULs are taken as they are.
class LineReader {
public:
    /// The caller keeps `descriptor`. `beforeWait` is called before each read, when all complete
    /// lines received so far have been handed out.
    LineReader(int descriptor, std::function<void()> beforeWait)
        : m_descriptor(descriptor), m_beforeWait(std::move(beforeWait))
    {}

    /// From now on lines end at `separator` only.
    void setSeparator(char separator) { m_separator = separator; }

    /// The next line without its separator; nothing at the end. Throws std::system_error when the
    /// input cannot be read.
    std::optional<std::string> next();

private:
    std::optional<std::string> nextWhole();
    void takeOffCarriageReturn(std::string& line);
    std::size_t findSeparator();
    void receive();
    std::string take(std::size_t end);

    int m_descriptor;
    std::function<void()> m_beforeWait;
    std::optional<char> m_separator;
    std::string m_buffer;
    std::size_t m_begin = 0;    // of the next line
    std::size_t m_searched = 0; // no separator between the line's begin and here
    bool m_ended = false;
    bool m_hasWarned = false;
};

} // namespace command

#endif
