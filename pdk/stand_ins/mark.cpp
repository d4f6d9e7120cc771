/// Tells a stand-in from a framework's own library of the same name: installation replaces no
/// library without this text.
[[gnu::used]] static const char mark[] = STAND_IN_MARK;
