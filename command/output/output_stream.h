#ifndef OUTPUT_OUTPUT_STREAM_H
#define OUTPUT_OUTPUT_STREAM_H

#include <cstdio>
#include <string_view>

namespace command {

/// Where the answers go. Every operation throws std::system_error when the stream cannot be
/// written.
class OutputStream {
public:
    /// The caller keeps `stream`.
    explicit OutputStream(std::FILE* stream) : m_stream(stream) {}

    bool isTerminal() const;

    void write(std::string_view bytes);

    /// Flushes the stream's buffer.
    void flush();

private:
    std::FILE* m_stream;
};

} // namespace command

#endif
