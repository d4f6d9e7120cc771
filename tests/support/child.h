#ifndef TESTS_SUPPORT_CHILD_H
#define TESTS_SUPPORT_CHILD_H

#include <cerrno>
#include <cstdlib>
#include <exception>

#include <sys/wait.h>
#include <unistd.h>

/// Runs `work` in a child process, for what would change or end the test program: signals,
/// limits, standard descriptors. Returns whether the child lived to its end and `work` returned
/// true.
template <class Work>
bool holdsInChild(const Work& work)
{
    const pid_t child = fork();
    if (child == 0) {
        try {
            _exit(work() ? 0 : 1);
        } catch (...) {
            _exit(2);
        }
    }
    int status = -1;
    pid_t ended = -1;
    do
        ended = waitpid(child, &status, 0);
    while (ended < 0 && errno == EINTR);
    return ended == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

#endif
