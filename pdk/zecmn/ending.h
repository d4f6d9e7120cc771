#ifndef ZECMN_ENDING_H
#define ZECMN_ENDING_H

#include "pdk/include/czeexecpipe.h"

namespace koze_pdk_4_4::runner {

/// How a program ended. This is the one place that knows the numbers by which
/// CZeExecPipeBase::Exec reports it.
struct Ending {
    enum class Kind { exited, killed, deadlinePassed, boundExceeded, statusUnknown };

    Kind kind;
    int number = 0; // the exit status, or the signal that killed the program
};

constexpr int resultOf(const Ending& ending)
{
    switch (ending.kind) {
    case Ending::Kind::exited:
        return ending.number;
    case Ending::Kind::killed:
        return CZeExecPipeBase::killedBySignal + ending.number;
    case Ending::Kind::deadlinePassed:
        return CZeExecPipeBase::deadlinePassed;
    case Ending::Kind::boundExceeded:
        return CZeExecPipeBase::boundExceeded;
    default:
        return CZeExecPipeBase::statusUnknown;
    }
}

/// REQUIRES: `result` is one of Exec's.
constexpr Ending endingOf(int result)
{
    switch (result) {
    case CZeExecPipeBase::deadlinePassed:
        return {Ending::Kind::deadlinePassed};
    case CZeExecPipeBase::boundExceeded:
        return {Ending::Kind::boundExceeded};
    case CZeExecPipeBase::statusUnknown:
        return {Ending::Kind::statusUnknown};
    default:
        return result > CZeExecPipeBase::killedBySignal
                   ? Ending{Ending::Kind::killed, result - CZeExecPipeBase::killedBySignal}
                   : Ending{Ending::Kind::exited, result};
    }
}

} // namespace koze_pdk_4_4::runner

#endif
