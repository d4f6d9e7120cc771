#ifndef KOVM_PAUSE_H
#define KOVM_PAUSE_H

#include <chrono>

namespace kovm {

/// Sleeps for the whole time, also when signals interrupt the sleep.
void pauseFor(std::chrono::seconds time);

} // namespace kovm

#endif
