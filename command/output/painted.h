#ifndef OUTPUT_PAINTED_H
#define OUTPUT_PAINTED_H

#include <string>

#include "output/field.h"
#include "output/output_stream.h"

namespace command {

/// The text in the colour of `tone`, if `output` shows colours; else the text as it is.
std::string painted(const std::string& text, Tone tone, const OutputStream& output);

/// The tone of a field: that of a mark or a flag, else plain.
Tone toneOf(const Field& field);

} // namespace command

#endif
