#ifndef SIMULATOR_JSON_TEXT_H
#define SIMULATOR_JSON_TEXT_H

#include <string>

#include "fields.h"

namespace simulator {

/// JSON as people write it by hand. A value is written on one line when that has at most 100
/// characters, counted with the indentation and without the key; else each element gets a line,
/// indented by two. The text has no final line end.
std::string jsonText(const Json& value, std::size_t indent = 0);

} // namespace simulator

#endif
