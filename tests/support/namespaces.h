#ifndef TESTS_SUPPORT_NAMESPACES_H
#define TESTS_SUPPORT_NAMESPACES_H

#include <functional>

/// Called where private namespaces are not permitted: skips the test, or fails it in CI, where they
/// must be permitted.
void endWithoutNamespaces();

/// Runs functions in child processes with namespaces of their own for processes and mounts.
class Namespaces {
public:
    /// What is mounted at /proc for the function.
    enum class Proc { ofItsProcesses, ofTheHost, missing };

    static bool arePermitted();

    /// Runs the function as the first process of the namespace: when it ends, the kernel kills the
    /// others. Its failed expectations fail this test.
    static void expectIn(Proc proc, const std::function<void()>& function);
};

#endif
