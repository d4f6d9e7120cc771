// tidy_up FILE STREAM: SIGTERM ends the program at once. Its child takes a while after SIGTERM and
// then creates the file. The child prints a line when it is ready and keeps only the stream of that
// number open. With stream 0 there is no child: the program acts as the child and keeps no stream.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

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
    const int kept = std::atoi(argv[2]);
    if (kept == 0 || fork() == 0) {
        sigset_t term; // blocked until the streams are closed
        sigemptyset(&term);
        sigaddset(&term, SIGTERM);
        sigprocmask(SIG_BLOCK, &term, nullptr);
        std::signal(SIGTERM, tidyUp);
        std::puts("ready to tidy up");
        std::fflush(stdout);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            if (stream != kept)
                close(stream);
        }
        sigprocmask(SIG_UNBLOCK, &term, nullptr);
    }
    for (;;)
        pause();
}
