#include "active/lookups.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

#include <poll.h>
#include <unistd.h>

#include "active/active_lookup.h"
#include "active/lookup_pool.h"
#include "active/progress_text.h"
#include "cli/terminal_line.h"
#include "cli/wanted_paths.h"
#include "interrupt/interrupt.h"

namespace command {

namespace {

constexpr std::chrono::milliseconds tick{200};

bool readsStandardInput(const Options& options)
{
    return std::find(options.paths.begin(), options.paths.end(), "-") != options.paths.end();
}

/// No more workers than paths, where the number of paths is known.
unsigned int workerCount(const Options& options, unsigned int jobs)
{
    return readsStandardInput(options)
               ? jobs
               : static_cast<unsigned int>(std::min<std::size_t>(jobs, options.paths.size()));
}

/// What the workers share with the caller. Each holds a shared_ptr, because the pool may detach
/// workers that then outlive the call.
struct Workers {
    Workers(const Options& options, const LookupOptions& lookup)
        : rules(lookup.rules), statuses(workerCount(options, lookup.jobs))
    {
        // A sink serves one thread.
        for (std::size_t i = 0; i < statuses.size(); ++i)
            sinks.push_back(openTraceSink(options.trace));
    }

    LookupResult lookUp(const std::string& path, unsigned int worker)
    {
        return ActiveLookup(rules, sinks[worker], stop, statuses[worker]).run(path);
    }

    std::optional<Activity> longest() const
    {
        std::optional<Activity> found;
        for (const LookupStatus& status : statuses) {
            std::optional<Activity> activity = status.get();
            if (activity && (!found || activity->lookupBegin < found->lookupBegin))
                found = std::move(activity);
        }
        return found;
    }

    LookupRules rules;
    StopRequest stop;
    std::atomic<bool> hasReadAll{true};
    std::vector<LookupStatus> statuses;
    std::vector<koze_pdk_4_4::CZeTraceSinkHandle> sinks;
};

/// Standard input has no path before the time limit passes.
struct InputIsLate {};

/// Waits until standard input can be read. Lines that are there already may be read for a second
/// past the limit, so that their paths get rows.
void awaitInput(const TimeLimit& limit)
{
    using namespace std::chrono;
    if (!limit)
        return;
    const auto left = ceil<milliseconds>(*limit - steady_clock::now());
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (left < seconds(-1) || poll(&input, 1, std::max(0, static_cast<int>(left.count()))) == 0)
        throw InputIsLate();
}

LookupPool::Source pathsOf(const Options& options, const std::shared_ptr<Workers>& workers)
{
    const auto paths = std::make_shared<PathSource>(
        wantedPaths(options, [limit = workers->rules.limit] { awaitInput(limit); }));
    return [paths, workers]() -> std::optional<std::string> {
        try {
            return paths->next();
        } catch (const InputIsLate&) {
            workers->hasReadAll = false;
            return std::nullopt;
        }
    };
}

/// -1 when no progress is shown: it is not wanted, or trace lines go to standard error.
int progressDescriptor(const Options& options, const LookupOptions& lookup)
{
    const bool tracesThere = options.trace.level && !options.trace.file;
    return lookup.withProgress && !tracesThere ? STDERR_FILENO : -1;
}

Progress progressOf(const Options& options, const Workers& workers, std::size_t done)
{
    Progress progress;
    progress.done = done;
    if (!readsStandardInput(options))
        progress.total = options.paths.size();
    progress.longest = workers.longest();
    progress.policy = workers.rules.policy();
    return progress;
}

/// Whether to stop waiting for results. After the time limit, lookups end when their tools have
/// been ended.
bool isOver(const Workers& workers)
{
    constexpr std::chrono::seconds patience{3}; // endTools takes two
    return workers.stop.reason() == StopReason::interrupt ||
           (workers.rules.limit && Timeline::Clock::now() >= *workers.rules.limit + patience);
}

/// The result of a lookup that does not end: its tool cannot be ended, or has printed very much.
LookupResult stuckResult(LookupResult result)
{
    CDmpClaimManager manager;
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, result.name);
    unsigned int partnum = 0;
    result.owner = driverOf(owner);
    result.disk = manager.removePartitionSuffix(result.name, partnum);
    result.active = result.name;
    result.outcome = {Outcome::Code::timedOut,
                      "the time limit passed, and the lookup does not end"};
    return result;
}

/// Hands over what is left when the wait for results has stopped.
void receiveRest(LookupPool& pool, const ResultReceiver& receiver, const StopRequest& stop)
{
    for (LookupPool::Rest& rest : pool.takeRest()) {
        if (rest.isAnswered)
            receiver.write(rest.result);
        else if (stop.reason() == StopReason::timeLimit)
            receiver.write(stuckResult(std::move(rest.result)));
    }
}

void receiveInOrder(LookupPool& pool, const ResultReceiver& receiver, TerminalLine& line,
                    const Workers& workers, const std::function<Progress()>& progress)
{
    LookupResult result;
    bool mustFlush = false;
    while (!isOver(workers)) {
        switch (pool.next(result, tick)) {
        case LookupPool::Next::result:
            line.erase();
            receiver.write(result);
            mustFlush = true;
            break;
        case LookupPool::Next::pending:
            if (std::exchange(mustFlush, false))
                receiver.flush();
            line.show(progressText(progress(), Timeline::Clock::now()));
            break;
        case LookupPool::Next::end:
            return;
        }
    }
}

} // namespace

bool lookUpActivePaths(const Options& options, const LookupOptions& lookup,
                       const ResultReceiver& receiver)
{
    const auto workers = std::make_shared<Workers>(options, lookup);
    TerminalLine line(progressDescriptor(options, lookup));
    const Interrupt interrupt(
        workers->stop, [&line] { line.close(); }, lookup.rules.limit);
    LookupPool pool(static_cast<unsigned int>(workers->statuses.size()), pathsOf(options, workers),
                    [workers](const std::string& path, unsigned int worker) {
                        return workers->lookUp(path, worker);
                    });
    try {
        receiveInOrder(pool, receiver, line, *workers,
                       [&] { return progressOf(options, *workers, pool.handedOut()); });
        line.erase();
        receiveRest(pool, receiver, workers->stop);
        receiver.finish(workers->stop.reason() == StopReason::interrupt);
    } catch (...) {
        interrupt.endTools();
        throw;
    }
    return workers->hasReadAll;
}

} // namespace command
