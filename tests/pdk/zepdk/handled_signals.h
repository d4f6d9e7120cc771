#ifndef HANDLED_SIGNALS_H
#define HANDLED_SIGNALS_H

#include <csignal>

/// How many signals the host's handler `countHandled` has got.
inline volatile std::sig_atomic_t handled = 0;

inline void countHandled(int /*signal*/)
{
    handled = handled + 1;
}

#endif
