#ifndef CLI_COMPLAINT_H
#define CLI_COMPLAINT_H

#include <string>

namespace command {

/// Writes a line on standard error: "dmpclaim: " and the text, made printable. A terminal gets long
/// lines wrapped.
void complain(const std::string& text);

} // namespace command

#endif
