// leave_group GROUP: tries to join that process group and to create a group and a session of its
// own, prints which of these succeeded, and hangs until a signal ends it.
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

int main(int, char** argv)
{
    std::puts(setpgid(0, std::atoi(argv[1])) == 0 ? "entered the group" : "kept out");
    std::puts(setpgid(0, 0) == 0 && getpgrp() != getsid(0) ? "made a group" : "made no group");
    std::puts(setsid() > 0 ? "made a session" : "made no session");
    std::fflush(stdout);
    for (;;)
        pause();
}
