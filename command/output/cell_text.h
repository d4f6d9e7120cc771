#ifndef OUTPUT_CELL_TEXT_H
#define OUTPUT_CELL_TEXT_H

#include <string>

#include "output/field.h"

namespace command {

/// A field as tables show it: text unaltered, "yes" and "no", "-" for none, seconds with three
/// digits, several texts joined by ",", the steps of a timeline separated by "; ". Commands are
/// quoted for a shell.
std::string cellText(const Field& field);

/// Whether tables show "-" for the field: it has no value, or several texts of which there is none.
bool isNone(const Field& field);

} // namespace command

#endif
