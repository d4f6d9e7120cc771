#include "output/output_stream.h"

#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace command {

namespace {

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
}

} // namespace

bool OutputStream::isTerminal() const
{
    return isatty(fileno(m_stream)) == 1;
}

void OutputStream::write(std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_stream) != bytes.size())
        fail();
}

void OutputStream::flush()
{
    if (std::fflush(m_stream) != 0)
        fail();
}

} // namespace command
