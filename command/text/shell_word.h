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
/// shell that does not know it, as dash, reads another text, but expands and runs nothing.
std::string shellWord(const std::string& text);

/// A command line of the runner, which splits it at spaces and at nothing else, as a shell reads
/// the same words: each word is quoted when that is needed. Spaces between words stay.
std::string shellCommand(const std::string& command);

} // namespace command

#endif
