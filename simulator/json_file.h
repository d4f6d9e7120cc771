#ifndef SIMULATOR_JSON_FILE_H
#define SIMULATOR_JSON_FILE_H

#include <string>

#include "fields.h"

namespace simulator {

/// Reads a JSON file, opened with the additional `flags` of open(2). Keeps only the fields that
/// `isWanted` accepts, by default all: the time that an object takes grows with the square of the
/// number of its fields. Throws an Error when the file cannot be read, is no JSON, or is nested
/// deeper than any state or report.
Json readJsonFile(const std::string& path, int flags = 0,
                  bool (*isWanted)(const std::string& field) = nullptr);

} // namespace simulator

#endif
