#ifndef SIMULATOR_JSON_TEXT_H
#define SIMULATOR_JSON_TEXT_H

#include "fields.h"

#include <string>

namespace simulator {

/// JSON as people write it by hand: what fits into a line of 100 characters stands on one line,
/// everything else gets a line for each element, indented by two. Without a line end.
std::string jsonText(const Json& value, std::size_t indent = 0);

} // namespace simulator

#endif
