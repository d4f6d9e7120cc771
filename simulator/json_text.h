#ifndef SIMULATOR_JSON_TEXT_H
#define SIMULATOR_JSON_TEXT_H

#include <string>

#include "fields.h"

namespace simulator {

/// JSON as people write it by hand: a value of up to 100 characters, with its indentation and
/// without its key, stands on one line, every other gets a line for each element, indented by two.
/// Without a line end.
std::string jsonText(const Json& value, std::size_t indent = 0);

} // namespace simulator

#endif
