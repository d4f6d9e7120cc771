#ifndef SIMULATOR_TABLES_H
#define SIMULATOR_TABLES_H

#include <string>
#include <vector>

namespace simulator {

using Row = std::vector<std::string>;

/// The lines of a table as the volume manager's tools print it: the header, a rule, then a line
/// for each row, in columns that are four spaces apart:
///
///     NAME       STATE      GROUP    PATHS
///     ====================================
///     arr0_17    ENABLED    arr0     2
///
/// Rows have as many cells as the header.
std::vector<std::string> tableLines(const Row& header, const std::vector<Row>& rows);

} // namespace simulator

#endif
