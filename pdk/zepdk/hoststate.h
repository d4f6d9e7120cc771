#ifndef HOSTSTATE_H
#define HOSTSTATE_H

#include <cerrno>

#include <pthread.h>

/// Keeps errno as the host left it, and holds off the cancellation of its thread: tracing runs in
/// destructors, where a cancelled thread would end the process.
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
