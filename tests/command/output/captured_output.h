#ifndef TESTS_COMMAND_OUTPUT_CAPTURED_OUTPUT_H
#define TESTS_COMMAND_OUTPUT_CAPTURED_OUTPUT_H

#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "output/output_stream.h"

/// An output stream into memory.
class CapturedOutput {
public:
    CapturedOutput() = default;
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;
    ~CapturedOutput() { close(m_file); }

    command::OutputStream& stream() { return m_stream; }

    /// What has been written so far.
    std::string text()
    {
        m_stream.flush();
        return written();
    }

    /// What has left the stream's buffer.
    std::string written() const
    {
        std::string text(static_cast<std::size_t>(lseek(m_file, 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(m_file, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
        return text;
    }

private:
    int m_file = memfd_create("output", MFD_CLOEXEC);
    command::OutputStream m_stream{m_file};
};

#endif
