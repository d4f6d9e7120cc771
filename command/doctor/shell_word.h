#ifndef DOCTOR_SHELL_WORD_H
#define DOCTOR_SHELL_WORD_H

#include <string>

namespace command {

/// The text as a shell reads it as one word: quoted when that is needed. A command that is advised
/// may be pasted into a shell, and a name may hold anything.
std::string shellWord(const std::string& text);

} // namespace command

#endif
