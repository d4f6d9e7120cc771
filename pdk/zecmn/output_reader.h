#ifndef ZECMN_OUTPUT_READER_H
#define ZECMN_OUTPUT_READER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "descriptor.h"
#include "line_collector.h"

namespace koze_pdk_4_4::runner {

/// The host's end of a pipe that a program prints to, with the lines that came out of it.
///
/// It is the pipe's only reader, so that reading what poll and FIONREAD announce does not block.
class OutputReader {
public:
    OutputReader(Descriptor pipe, std::vector<std::string>& lines, Budget& budget);

    /// The pipe, for poll; -1 after its end, when all its writers have closed it.
    int descriptor() const { return m_pipe.number(); }
    bool isOpen() const { return m_pipe.isOpen(); }

    /// Reads once. REQUIRES: the pipe is readable.
    void read();

    /// Reads what is in the pipe now and ends the stream. Does not wait for the pipe's writers.
    void finish();

private:
    std::size_t readUpTo(std::size_t most);

    static constexpr std::size_t pieceSize = std::size_t{64} << 10;

    Descriptor m_pipe;
    LineCollector m_lines;
    std::unique_ptr<char[]> m_piece;
};

} // namespace koze_pdk_4_4::runner

#endif
