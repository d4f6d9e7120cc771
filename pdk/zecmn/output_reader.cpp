#include "output_reader.h"

#include <algorithm>
#include <cerrno>

#include <sys/ioctl.h>
#include <unistd.h>

namespace koze_pdk_4_4::runner {

OutputReader::OutputReader(Descriptor pipe, std::vector<std::string>& lines, Budget& budget)
    : m_pipe(std::move(pipe)), m_lines(lines, budget), m_piece(new char[pieceSize])
{}

void OutputReader::read()
{
    readUpTo(pieceSize);
}

void OutputReader::finish()
{
    int available = 0;
    if (isOpen())
        ioctl(m_pipe.number(), FIONREAD, &available);
    for (auto left = static_cast<std::size_t>(available); left > 0 && isOpen();)
        left -= readUpTo(std::min(left, pieceSize));
    m_lines.finish();
}

/// Returns the number of bytes read; closes the pipe at its end.
std::size_t OutputReader::readUpTo(std::size_t most)
{
    const ssize_t size = ::read(m_pipe.number(), m_piece.get(), most);
    if (size > 0) {
        m_lines.add({m_piece.get(), static_cast<std::size_t>(size)});
        return static_cast<std::size_t>(size);
    }
    if (size == 0 || errno != EINTR)
        m_pipe.reset();
    return 0;
}

} // namespace koze_pdk_4_4::runner
