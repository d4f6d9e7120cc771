#ifndef SIMULATOR_SHAPING_H
#define SIMULATOR_SHAPING_H

#include "faults.h"

#include <string>
#include <vector>

namespace simulator {

/// The text that a tool prints for `lines`, spoilt as `shape` says, without its flood.
std::string shapedText(std::vector<std::string> lines, const Shape& shape);

} // namespace simulator

#endif
