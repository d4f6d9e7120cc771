#ifndef ZEPDK_HOSTSTATE_H
#define ZEPDK_HOSTSTATE_H

#include <cerrno>

#include <pthread.h>

/// Restores errno at its end, and disables the cancellation of the thread until then: tracing runs
/// in destructors, where a cancellation would end the process.
class HostState {
public:
    HostState() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_cancelState); }
    HostState(const HostState&) = delete;
    HostState& operator=(const HostState&) = delete;
    ~HostState()
    {
        pthread_setcancelstate(m_cancelState, nullptr);
        errno = m_errno;
    }

private:
    int m_errno = errno;
    int m_cancelState = PTHREAD_CANCEL_ENABLE;
};

#endif
