// tidy_up FILE: dies of SIGTERM at once, but a child of it needs a while after SIGTERM to tidy up,
// and then creates the file. The child prints a line when it is ready.
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

static const char* file;

static void tidyUp(int)
{
    usleep(300000);
    _exit(open(file, O_WRONLY | O_CREAT | O_CLOEXEC, 0600) < 0 ? 1 : 0);
}

int main(int, char** argv)
{
    file = argv[1];
    if (fork() == 0) {
        std::signal(SIGTERM, tidyUp);
        std::puts("ready to tidy up");
        std::fflush(stdout);
    }
    for (;;)
        pause();
}
