#ifndef OUTPUT_PAIRS_OUTPUT_H
#define OUTPUT_PAIRS_OUTPUT_H

#include <vector>

#include "output/columns.h"
#include "output/output_stream.h"
#include "output/row_writer.h"

namespace command {

/// Writes rows for shells, a line of pairs each:
///
///     NAME="/dev/sda1" OWNER="native" PARTNUM="1"
///
/// A field without a value is empty. Characters that a shell expands between double quotes, and
/// bytes that are not printable ASCII, become \xNN.
class PairsOutput : public RowWriter {
public:
    PairsOutput(OutputStream& output, std::vector<Heading> headings)
        : m_output(output), m_headings(std::move(headings))
    {}
    void write(const Row& row) override;

private:
    OutputStream& m_output;
    std::vector<Heading> m_headings;
};

} // namespace command

#endif
