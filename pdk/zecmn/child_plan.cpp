// What a child does between clone and execve. It runs in the host's memory, shared or copied,
// including the thread-local storage, and another thread of the host may hold any lock. So it makes
// plain system calls only: it calls no function of the C library that keeps state, and none that a
// host may have replaced. System calls write errno; while the child shares the memory, the host's
// thread does not use errno.
#include "child_plan.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <new>
#include <system_error>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "switch_user.h"

namespace koze_pdk_4_4::runner {

namespace {

static_assert(sizeof(long) == 8, "system calls take 64-bit arguments as they are");

/// Zeros for system calls: as a signal set it is empty, as a signal action it is SIG_DFL, as a
/// timeout it is 0.
constexpr std::size_t kernelSetSize = 8;
constexpr char kernelZeros[64] = {};
constexpr std::uint64_t everySignal = ~std::uint64_t{0};

constexpr int firstAboveStdio = STDERR_FILENO + 1;

/// Memory that stays shared with a child that gets a copy of all other memory.
Failure* mapFailure()
{
    void* memory =
        mmap(nullptr, sizeof(Failure), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "cannot start a process");
    return new (memory) Failure();
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Called before signals are unblocked: a handler of the host must not run in the child.
void resetDispositions()
{
    for (int signal = 1; signal < _NSIG; ++signal)
        syscall(SYS_rt_sigaction, signal, kernelZeros, nullptr, kernelSetSize);
}

/// Drops pending signals: they were sent to the host's process group before setsid.
void dropSignals()
{
    while (syscall(SYS_rt_sigtimedwait, &everySignal, nullptr, kernelZeros, kernelSetSize) > 0) {
    }
}

bool placeStdio(const StandardStreams& streams)
{
    return syscall(SYS_dup3, streams.input, STDIN_FILENO, 0) >= 0 &&
           syscall(SYS_dup3, streams.output, STDOUT_FILENO, 0) >= 0 &&
           syscall(SYS_dup3, streams.errors, STDERR_FILENO, 0) >= 0;
}

/// The descriptor that an entry of /proc/self/fd names; 0 for "." and "..".
int numberOf(const char* name)
{
    int number = 0;
    for (; *name >= '0'; ++name)
        number = number * 10 + (*name - '0');
    return number;
}

/// Closes the descriptors that a buffer of /proc/self/fd entries names, except for stdin, stdout,
/// stderr and `directory`.
void closeEntries(const char* entries, long size, int directory)
{
    for (long at = 0; at < size;) {
        const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
        const int number = numberOf(entry->d_name);
        if (number >= firstAboveStdio && number != directory)
            syscall(SYS_close, number);
        at += entry->d_reclen;
    }
}

/// For kernels before 5.9, which have no close_range. execve closes the directory.
bool closeListed()
{
    const auto directory = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, "/proc/self/fd", O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (directory < 0)
        return false;
    alignas(dirent64) char entries[2048];
    long size = 0;
    while ((size = syscall(SYS_getdents64, directory, entries, sizeof entries)) > 0)
        closeEntries(entries, size, directory);
    return size == 0;
}

bool closeHostDescriptors()
{
    return syscall(SYS_close_range, firstAboveStdio, ~0U, 0) == 0 || closeListed();
}

} // namespace

void UnmapFailure::operator()(Failure* failure) const
{
    munmap(failure, sizeof *failure);
}

ChildPlan::ChildPlan(Program program, const StandardStreams& streams)
    : m_program(std::move(program)), m_streams(streams),
      m_arguments(pointersTo(m_program.arguments)),
      m_environment(pointersTo(m_program.environment)),
      m_mappedFailure(copiesMemory() ? mapFailure() : nullptr),
      m_failure(m_mappedFailure ? *m_mappedFailure : m_ownFailure)
{}

int ChildPlan::enter(void* plan)
{
    auto* self = static_cast<ChildPlan*>(plan);
    const char* step = self->start();
    self->m_failure.error = errno;
    self->m_failure.step = step;
    return 127;
}

/// Executes the program. Returns only on failure: the step that failed, with errno set.
const char* ChildPlan::start() const
{
    resetDispositions();
    if (syscall(SYS_setsid) < 0)
        return "cannot lead a session";
    dropSignals();
    if (!placeStdio(m_streams))
        return "cannot place its streams";
    if (!closeHostDescriptors())
        return "cannot close the host's descriptors";
    const char* failed = m_program.identity ? switchUser(*m_program.identity) : nullptr;
    if (failed != nullptr)
        return failed;
    if (!m_program.directory.empty() && syscall(SYS_chdir, m_program.directory.c_str()) != 0)
        return "cannot enter its directory";
    syscall(SYS_rt_sigprocmask, SIG_SETMASK, kernelZeros, nullptr, kernelSetSize);
    syscall(SYS_execve, m_arguments.front(), m_arguments.data(), m_environment.data());
    return errno == ENOENT ? "it or its interpreter is missing" : "it cannot be executed";
}

} // namespace koze_pdk_4_4::runner
