// What tracing costs a host: a line to a file beside the same line made with vsnprintf and one
// write, and an operation without a log and with one that wants nothing.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "benchmarks/comparison.h"
#include "pdk/include/czetracelog.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace {

using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceFileSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;

/// A file that is removed at the end.
class ScratchFile {
public:
    ScratchFile() { close(mkstemp(m_path.data())); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { unlink(m_path.c_str()); }

    const std::string& path() const { return m_path; }
    int open() const { return ::open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC); }

private:
    std::string m_path = (std::filesystem::temp_directory_path() / "trace-XXXXXX").string();
};

/// What a host would write instead of a log: the same line, in a buffer of its own.
class PlainLog {
public:
    explicit PlainLog(int descriptor) : m_descriptor(descriptor) {}

    void trace(int level, const char* format, ...) __attribute__((format(printf, 3, 4)))
    {
        char line[1024];
        std::size_t size = prefix(line, sizeof line, level);
        va_list arguments;
        va_start(arguments, format);
        size += static_cast<std::size_t>(
            std::vsnprintf(line + size, sizeof line - size, format, arguments));
        va_end(arguments);
        line[size++] = '\n';
        keep(write(m_descriptor, line, size));
    }

private:
    static std::size_t prefix(char* line, std::size_t room, int level)
    {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        tm local{};
        localtime_r(&now.tv_sec, &local);
        const long offset = std::labs(local.tm_gmtoff) / 60;
        return static_cast<std::size_t>(std::snprintf(
            line, room, "%04d-%02d-%02dT%02d:%02d:%02d.%03ld%c%02ld:%02ld [%d] %d ",
            local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
            local.tm_sec, now.tv_nsec / 1000000, local.tm_gmtoff < 0 ? '-' : '+', offset / 60,
            offset % 60, getpid(), level));
    }

    int m_descriptor;
};

void compareLines()
{
    static const std::string stored = "2026-11-21T10:53:24.123+00:00 [47110] 6 Entering Function "
                                      "claim [24, dmp_claim_manager.cpp]\n";
    const ScratchFile file;
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceFileSink(6, file.path()));
    const int descriptor = file.open();
    PlainLog plain(descriptor);
    const auto trace = [](auto& one) {
        one.trace(6, "Entering Function %s [%d, %s]", "claim", 24, "dmp_claim_manager.cpp");
    };
    const auto openEachTime = [&] {
        const int own = file.open();
        keep(write(own, stored.data(), stored.size()));
        close(own);
    };
    compare("a line to a file",
            {{"ours", computing([&] { trace(*log.get()); })},
             {"vsnprintf and write", computing([&] { trace(plain); })},
             {"write", computing([&] { keep(write(descriptor, stored.data(), stored.size())); })},
             {"open, write, close", computing(openEachTime)}});
    close(descriptor);
}

/// An operation of the size of a name question.
class Operation : public CZeTraceable {
public:
    __attribute__((noinline)) std::size_t traced(const std::string& name)
    {
        CZE_TRACE_FUNCTION();
        CZE_TRACE(3, "INFO: %s", name.c_str());
        return name.find("/dev/mapper/");
    }

    __attribute__((noinline)) std::size_t untraced(const std::string& name)
    {
        return name.find("/dev/mapper/");
    }
};

CZeTraceLogHandle quietLog()
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(0, [](int, std::string_view) { std::abort(); }));
    return log;
}

void compareQuietLogs()
{
    CZeTraceLogHandle log = quietLog();
    const std::string device = "/dev/disk/by-id/sdc";
    Operation silent;
    Operation quiet;
    quiet.registerTraceLog(log);
    compare("an operation that traces",
            {{"log that wants nothing", computing([&] { keep(quiet.traced(device)); })},
             {"no log", computing([&] { keep(silent.traced(device)); })},
             {"untraced", computing([&] { keep(silent.untraced(device)); })}});
    CDmpClaimManager silentManager;
    CDmpClaimManager quietManager;
    quietManager.registerTraceLog(log);
    compare("claim /dev/sdc with a log",
            {{"log that wants nothing", computing([&] { keep(quietManager.claim("/dev/sdc")); })},
             {"no log", computing([&] { keep(silentManager.claim("/dev/sdc")); })}});
}

} // namespace

int main()
{
    compareLines();
    compareQuietLogs();
}
