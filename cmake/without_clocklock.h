// Included before all else: std::timed_mutex then calls pthread_mutex_timedlock.
#include <bits/c++config.h>
#undef _GLIBCXX_USE_PTHREAD_MUTEX_CLOCKLOCK
