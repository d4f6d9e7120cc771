#include "pdk/include/czeexecpipe.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <new>
#include <string>

#include <pthread.h>
#include <unistd.h>

#include "ending.h"
#include "line_collector.h"
#include "program.h"
#include "run.h"

namespace koze_pdk_4_4 {

namespace {

/// Disables the cancellation of this thread: inside a destructor it would end the process.
class CancellationBlock {
public:
    CancellationBlock() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_state); }
    CancellationBlock(const CancellationBlock&) = delete;
    CancellationBlock& operator=(const CancellationBlock&) = delete;
    ~CancellationBlock() { pthread_setcancelstate(m_state, nullptr); }

private:
    int m_state = PTHREAD_CANCEL_ENABLE;
};

unsigned long effectiveLimit(unsigned long timeLimitSeconds)
{
    return timeLimitSeconds == 0
               ? CZeExecPipeBase::defaultLimitSeconds
               : std::min(timeLimitSeconds, +CZeExecPipeBase::longestLimitSeconds);
}

runner::Limits limitsFor(unsigned long timeLimitSeconds)
{
    return {std::chrono::seconds(timeLimitSeconds),
            std::chrono::seconds(CZeExecPipeBase::graceSeconds), CZeExecPipeBase::outputBound,
            CZeExecPipeBase::lineBound};
}

runner::Program programFor(const std::string& command, const std::string& directory,
                           const std::string& user, const std::string& environment)
{
    runner::Program program;
    program.arguments = runner::splitCommand(command);
    program.directory = runner::checkedDirectory(directory);
    if (!user.empty())
        program.identity = runner::lookUpUser(user);
    program.environment = runner::childEnvironment(environ, environment, program.identity);
    return program;
}

std::string pathOf(const std::string& command)
{
    const std::size_t first = std::min(command.find_first_not_of(' '), command.size());
    return command.substr(first, command.find_first_of({" \0", 2}, first) - first);
}

std::string textOf(const std::exception& reason)
{
    return dynamic_cast<const std::bad_alloc*>(&reason) == nullptr ? reason.what() : "no memory";
}

/// How a command ended, for the trace.
std::string textOf(const runner::Ending& ending, unsigned long timeLimitSeconds)
{
    switch (ending.kind) {
    case runner::Ending::Kind::exited:
        return "ended with exit status " + std::to_string(ending.number);
    case runner::Ending::Kind::killed:
        return "was ended by signal " + std::to_string(ending.number);
    case runner::Ending::Kind::deadlinePassed:
        return "was ended: its limit of " + std::to_string(timeLimitSeconds) + " seconds passed";
    case runner::Ending::Kind::boundExceeded:
        return "was ended: it printed more than " + std::to_string(CZeExecPipeBase::outputBound) +
               " bytes, or a line of more than " + std::to_string(CZeExecPipeBase::lineBound);
    default:
        return "ended, but the host has taken its exit status away";
    }
}

long long millisecondsSince(std::chrono::steady_clock::time_point start)
{
    const auto passed = std::chrono::steady_clock::now() - start;
    return std::chrono::duration_cast<std::chrono::milliseconds>(passed).count();
}

/// Appends `errors` to `output`, whose lines from `before` on are the run's. Of a run that exceeded
/// its bound, keeps only the beginnings of both.
void deliverFailure(int result, std::size_t before, std::vector<std::string>& output,
                    std::vector<std::string>& errors)
{
    if (result == CZeExecPipeBase::boundExceeded) {
        runner::keepBeginning(output, before, CZeExecPipeBase::floodKept);
        runner::keepBeginning(errors, 0, CZeExecPipeBase::floodKept);
    }
    output.insert(output.end(), std::make_move_iterator(errors.begin()),
                  std::make_move_iterator(errors.end()));
}

} // namespace

EZeExecPipe::~EZeExecPipe() = default;

CZeExecPipeBase::CZeExecPipeBase(int streams) : m_streams(streams)
{
    if (streams != 1 && streams != 2)
        throw std::invalid_argument("a runner delivers one stream or two");
}

CZeExecPipeBase::~CZeExecPipeBase() = default;

int CZeExecPipeBase::Exec(const std::string& command, std::vector<std::string>& output,
                          const std::string& directory, unsigned long timeLimitSeconds,
                          const std::string& user, const std::string& environment,
                          const std::string& input)
{
    const CancellationBlock block;
    const auto start = std::chrono::steady_clock::now();
    const std::size_t before = output.size();
    const unsigned long seconds = effectiveLimit(timeLimitSeconds);
    std::vector<std::string> errors;
    int result = 0;
    try {
        result = runner::run(programFor(command, directory, user, environment), input,
                             limitsFor(seconds), output, m_streams == 2 ? output : errors);
        if (result != 0)
            deliverFailure(result, before, output, errors);
    } catch (const std::exception& reason) {
        CZE_TRACE(2, "Command [%s] cannot be run: %s.", command.c_str(), textOf(reason).c_str());
        throw EZeExecPipe("cannot run " + pathOf(command) + ": " + textOf(reason));
    }
    if (result == 0) {
        for (const std::string& line : errors)
            CZE_TRACE(2, "Command [%s] warns: %s", command.c_str(), line.c_str());
    }
    CZE_TRACE(result == 0 ? 6 : 2, "Command [%s] took %lld ms and %s.", command.c_str(),
              millisecondsSince(start), textOf(runner::endingOf(result), seconds).c_str());
    return result;
}

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams) {}

CZeExecPipePosix::~CZeExecPipePosix() = default;

} // namespace koze_pdk_4_4
