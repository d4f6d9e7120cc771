#ifndef TEXT_SHELL_WORD_H
#define TEXT_SHELL_WORD_H

#include <string>

namespace command {

/// The text as bash, zsh and ksh read it as one word: quoted when that is needed. The result is
/// printable ASCII that `printable` leaves as it is, so the word may be pasted from a terminal.
///
///     word = plain+ | "'" ascii* "'" | "$'" ( plain | "\" octal octal octal )* "'"
///
/// The third form is for texts with a backslash, or with bytes that are not printable ASCII. A
/// shell without it, such as dash, reads another text, but expands and runs nothing.
std::string shellWord(const std::string& text);

/// Quotes each word of a runner's command line where needed, so that a shell reads the same words.
/// The runner splits the line at runs of spaces and at nothing else. Spaces between words stay.
std::string shellCommand(const std::string& command);

} // namespace command

#endif
