// Replaces syscall() of a test program. Include it in one source of the program.
#ifndef TESTS_SUPPORT_REPLACED_SYSCALL_H
#define TESTS_SUPPORT_REPLACED_SYSCALL_H

#include <array>
#include <cstdarg>
#include <optional>

#include <dlfcn.h>

using SyscallArguments = std::array<long, 6>;

/// Defined by the test: its answer to a call; nothing for calls that the machine's kernel answers.
/// The runner's children call it too, in the memory of the test.
std::optional<long> answerSyscall(long number, const SyscallArguments& arguments) noexcept;

// Looked up at start: a child that shares this memory must not look symbols up.
inline auto* const realSyscall = reinterpret_cast<long (*)(long, ...)>(dlsym(RTLD_NEXT, "syscall"));

// NOLINTNEXTLINE(misc-definitions-in-headers): one source includes it
extern "C" long syscall(long number, ...) noexcept
{
    std::va_list list;
    va_start(list, number);
    SyscallArguments a{};
    for (long& argument : a)
        argument = va_arg(list, long);
    va_end(list);
    if (const std::optional<long> answer = answerSyscall(number, a))
        return *answer;
    return realSyscall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

#endif
