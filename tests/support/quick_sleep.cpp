// Replaces `sleep` in a process that loads this with LD_PRELOAD: appends the seconds as a line to
// the file SLEEP_LOG and returns after SLEEP_MILLISECONDS, or at once when that is not set.
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

extern "C" unsigned int sleep(unsigned int seconds)
{
    const std::string line = std::to_string(seconds) + "\n";
    const int log = open(std::getenv("SLEEP_LOG"), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (log < 0 || write(log, line.data(), line.size()) < 0)
        abort();
    close(log);
    if (const char* milliseconds = std::getenv("SLEEP_MILLISECONDS"))
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(milliseconds)));
    return 0;
}
