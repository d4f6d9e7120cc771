#ifndef TESTS_COMMAND_OUTPUT_CAPTURED_OUTPUT_H
#define TESTS_COMMAND_OUTPUT_CAPTURED_OUTPUT_H

#include <cstdlib>
#include <string>

#include "output/output_stream.h"

/// An output stream into memory.
class CapturedOutput {
public:
    CapturedOutput() = default;
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;
    ~CapturedOutput()
    {
        std::fclose(m_file);
        std::free(m_text);
    }

    command::OutputStream& stream() { return m_stream; }

    /// What has been written so far.
    std::string text()
    {
        m_stream.flush();
        return {m_text, m_size};
    }

private:
    char* m_text = nullptr;
    std::size_t m_size = 0;
    std::FILE* m_file = open_memstream(&m_text, &m_size);
    command::OutputStream m_stream{m_file};
};

#endif
