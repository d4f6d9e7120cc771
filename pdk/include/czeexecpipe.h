#ifndef CZEEXECPIPE_H
#define CZEEXECPIPE_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "pdk/include/czeexport.h"
#include "pdk/include/czetracelog.h"

namespace koze_pdk_4_4 {

/// A program that could not be run at all. The message says which program and why.
class CZE_EXPORT EZeExecPipe : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    EZeExecPipe(const EZeExecPipe&) = default;
    EZeExecPipe& operator=(const EZeExecPipe&) = default;
    ~EZeExecPipe() override;
};

/// Runs external programs, one after the other, and collects what they print. Construct a
/// CZeExecPipePosix.
///
/// Of any framework the library relies on this: Exec runs the command line, appends the lines of
/// its output, returns 0 for success and nothing else, and throws EZeExecPipe when the command
/// cannot be run. All else that this header says is what the stand-in does.
///
/// Made for a host that is not ours: it starts no thread, takes no lock, changes neither the
/// host's signal handlers nor its environment, locale or directory, and raises no SIGPIPE. Any
/// number of runners may work at once, in as many threads; one runner serves one thread.
class CZE_EXPORT CZeExecPipeBase : public CZeTraceable {
public:
    /// Results of Exec that no exit status can be.
    ///
    /// A signal ended the program: this plus the signal's number, as in 1009 for SIGKILL.
    static constexpr int killedBySignal = 1000;
    /// The time limit passed.
    static constexpr int deadlinePassed = 1100;
    /// The program printed more than outputBound bytes or a line of more than lineBound bytes.
    static constexpr int boundExceeded = 1101;
    /// The program ended, but the host has taken its status away: it ignores SIGCHLD or reaps
    /// every child itself, and the kernel (before 6.15) keeps no other record.
    static constexpr int statusUnknown = 1102;

    /// The time limit that a limit of 0 stands for.
    static constexpr unsigned long defaultLimitSeconds = 600;
    /// The longest time limit.
    static constexpr unsigned long longestLimitSeconds = 1'000'000'000;
    /// Between SIGTERM and SIGKILL, for a program that has to be ended.
    static constexpr unsigned long graceSeconds = 2;
    /// What both streams together may take, in bytes. A line takes its length and the size of a
    /// std::string.
    static constexpr std::size_t outputBound = std::size_t{256} << 20;
    /// The longest line, in bytes.
    static constexpr std::size_t lineBound = std::size_t{1} << 20;
    /// How much of its output, counted in the same way, is kept of a program that passed a bound.
    static constexpr std::size_t floodKept = std::size_t{1} << 20;

    CZeExecPipeBase(const CZeExecPipeBase&) = default;
    CZeExecPipeBase& operator=(const CZeExecPipeBase&) = default;
    ~CZeExecPipeBase() override;

    /// Runs `command` and waits until it has ended. Returns its exit status, 0 to 255, or one of
    /// the results above; throws EZeExecPipe when it cannot be run, for want of memory too. Nothing
    /// else is thrown but what the trace log throws.
    ///
    /// `command` is an absolute path and its arguments, separated by runs of spaces. There is no
    /// shell and no quoting: every other character reaches the program as it is.
    ///
    /// `output` keeps what it holds; behind that come the lines of standard output in order,
    /// without their line ends ("\n" or "\r\n"), a last unterminated line included. NUL bytes
    /// stay in the lines. When the result is not 0, the lines of standard error follow: they say
    /// why. When it is 0, they are traced at level 2 and not delivered, so that a warning does not
    /// spoil a table. A call that throws leaves the lines that it had collected.
    ///
    /// The optional settings, each absent when it is empty:
    ///   directory    working directory of the program; else the host's.
    ///   user         name of the account that the program runs as, see below; else the host's user
    ///                and groups. Looked up before the time limit begins.
    ///   environment  lines NAME=VALUE that replace or join the program's variables. These are
    ///                the host's, with LC_ALL=C and without LANGUAGE.
    ///   input        text of standard input; else it is /dev/null. One that is longer than a
    ///                file of the host may be (RLIMIT_FSIZE) is refused with EZeExecPipe.
    ///
    /// The program gets no other descriptor, default signal dispositions, no blocked or pending
    /// signal, and a session and process group of its own, without a terminal. The call returns as
    /// soon as the program has ended and what it printed until then is read; what it left running
    /// in the background is left alone.
    ///
    /// With `user`, the program has the account's user, groups, HOME, USER, LOGNAME and SHELL, and
    /// a new session keyring. It has none of the host's capabilities (an account with number 0 gets
    /// root's) and no real-time class. Everything else is inherited: the other variables, with any
    /// secret in them; limits, nice value, I/O priority and out-of-memory score; umask, processors,
    /// capability bounding set, namespaces, control group and filters. Setuid programs work. An
    /// account whose number, or a group's, is 4294967295 is refused with EZeExecPipe. The program
    /// starts from a copy of the host, as after fork, that no process of the account can look into.
    /// Its cost grows with the host, and what open(2) says of direct I/O during a fork holds.
    /// Without `user` nothing is copied.
    ///
    /// Past `timeLimitSeconds` (0: the default limit; more than 1,000,000,000 counts as that), or
    /// past a bound, the program and its process group get SIGTERM and, after the grace at the
    /// latest, SIGKILL. The call then returns within another second. The program cannot leave its
    /// group. A process that it has started can, and is left behind then. So is one that waits for
    /// a device that does not answer, and, before kernel 6.9 and in a host that reaps every child
    /// itself, what outlives the program in its group: its number may mean another group by then.
    /// Nothing waits for what is left behind.
    ///
    /// The host gets its SIGCHLD as for any child. Signals to this thread wait while the program
    /// starts, a cancellation of it until the call returns.
    ///
    /// With a trace log, writes how long the command took and how it ended: at level 6 for
    /// success, else at level 2.
    int Exec(const std::string& command, std::vector<std::string>& output,
             const std::string& directory, unsigned long timeLimitSeconds, const std::string& user,
             const std::string& environment, const std::string& input);

protected:
    /// `streams` as for CZeExecPipePosix.
    explicit CZeExecPipeBase(int streams);

private:
    int m_streams;
};

/// The runner for Linux.
class CZE_EXPORT CZeExecPipePosix : public CZeExecPipeBase {
public:
    /// `streams` is the number of the program's streams that count as its output: 1, standard
    /// output, or 2, standard error too, as one stream in the order in which both were printed.
    /// Throws std::invalid_argument for any other number.
    explicit CZeExecPipePosix(int streams);
    CZeExecPipePosix(const CZeExecPipePosix&) = default;
    CZeExecPipePosix& operator=(const CZeExecPipePosix&) = default;
    ~CZeExecPipePosix() override;
};

} // namespace koze_pdk_4_4

#endif
