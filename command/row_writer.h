#ifndef ROW_WRITER_H
#define ROW_WRITER_H

#include <string>
#include <vector>

#include "columns.h"
#include "row.h"

namespace command {

/// Writes rows in one form, each as early as the form allows. Throws what OutputStream throws.
class RowWriter {
public:
    RowWriter() = default;
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;
    virtual ~RowWriter() = default;

    virtual void write(const Row& row) = 0;

    /// Writes what is held back, if the form allows that before the last row.
    virtual void flush() {}

    /// Writes what is still held back. Called once, behind the last row.
    virtual void finish() {}
};

/// A field as tables show it: text unaltered, "yes" and "no", "-" for null, seconds with three
/// digits, the steps of a timeline one behind the other, their commands quoted for a shell.
std::string cellText(const Row& field);

/// The row's field in the column, as tables show it. Commands are quoted for a shell.
std::string cellText(const Row& row, const Column& column);

} // namespace command

#endif
