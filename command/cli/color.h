#ifndef CLI_COLOR_H
#define CLI_COLOR_H

namespace command {

/// Whether the user wants colours.
enum class ColorChoice { automatic, always, never };

/// Whether the answers get colours. Without a choice of the user's, a terminal shows them unless
/// the environment has NO_COLOR, or TERM=dumb.
bool showsColors(ColorChoice choice, bool isTerminal);

} // namespace command

#endif
