#ifndef TESTS_SUPPORT_SYSTEM_CALL_FAULTS_H
#define TESTS_SUPPORT_SYSTEM_CALL_FAULTS_H

#include <functional>
#include <map>
#include <string>
#include <vector>

/// System calls by number, each with errors that its manual names.
using CallErrors = std::map<long, std::vector<int>>;

/// These calls with the errors of their manuals. REQUIRES: system_call_faults.cpp knows them.
CallErrors errorsOf(const std::vector<long>& calls);

/// One system call that fails.
struct CallFault {
    long call = -1;
    int error = 0;
    unsigned int number = 0; // which of these calls, from 1
    bool inChild = false;    // in a child of the process, before it executes a program; or a thread
};

/// What fails, and what it takes to tell whether the result is right.
struct FaultyWork {
    CallErrors errors;

    /// Its calls fail, one in each run. Runs in a process of its own.
    std::function<void()> operation;

    /// Runs behind the operation in the same process, where no call fails any more. Returns what is
    /// wrong, or nothing.
    std::function<std::string(const CallFault& fault)> verdict;
};

/// Runs the operation again and again. In each run one call fails with one error, until every call
/// has failed with each of its errors. Fails the test for each verdict, and when a run takes 20
/// seconds. Returns the number of faults.
///
/// A seccomp filter hands each listed call to this process, which answers with the error or lets
/// the kernel go on. Programs that the operation executes are let alone.
unsigned int failEachCall(const FaultyWork& work);

/// Whether such filters are permitted here.
bool mayFailCalls();

#endif
