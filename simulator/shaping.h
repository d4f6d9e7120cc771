#ifndef SIMULATOR_SHAPING_H
#define SIMULATOR_SHAPING_H

#include <string>
#include <vector>

#include "faults.h"

namespace simulator {

/// The text that a tool prints for `lines`, spoilt as `shape` says, without its flood.
std::string shapedText(std::vector<std::string> lines, const Shape& shape);

} // namespace simulator

#endif
