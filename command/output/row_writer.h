#ifndef OUTPUT_ROW_WRITER_H
#define OUTPUT_ROW_WRITER_H

#include "output/field.h"

namespace command {

/// Writes rows in one form, each as early as the form allows. Throws what OutputStream throws.
class RowWriter {
public:
    RowWriter() = default;
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;
    virtual ~RowWriter() = default;

    /// Writes a row that has a field for each column.
    virtual void write(const Row& row) = 0;

    /// Writes what is held back, if the form allows that before the last row.
    virtual void flush() {}

    /// Writes what is still held back. Called once, after the last row.
    virtual void finish() {}
};

} // namespace command

#endif
