#include "active/lookups.h"

#include <algorithm>
#include <memory>
#include <utility>

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
        : refresh(lookup.refresh), statuses(workerCount(options, lookup.jobs))
    {
        // A sink serves one thread.
        for (std::size_t i = 0; i < statuses.size(); ++i)
            sinks.push_back(openTraceSink(options.trace));
    }

    LookupResult lookUp(const std::string& path, unsigned int worker)
    {
        return ActiveLookup(refresh, sinks[worker], stop, statuses[worker]).run(path);
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

    bool refresh;
    StopRequest stop;
    std::vector<LookupStatus> statuses;
    std::vector<koze_pdk_4_4::CZeTraceSinkHandle> sinks;
};

LookupPool::Source pathsOf(const Options& options)
{
    const auto paths = std::make_shared<PathSource>(wantedPaths(options, [] {}));
    return [paths] { return paths->next(); };
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
    progress.policy = kovm::retryPolicy(workers.refresh);
    return progress;
}

void receiveAll(LookupPool& pool, const ResultReceiver& receiver, TerminalLine& line,
                const std::function<Progress()>& progress)
{
    LookupResult result;
    bool mustFlush = false;
    for (;;) {
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
            line.erase();
            return;
        }
    }
}

} // namespace

void lookUpActivePaths(const Options& options, const LookupOptions& lookup,
                       const ResultReceiver& receiver)
{
    const auto workers = std::make_shared<Workers>(options, lookup);
    TerminalLine line(progressDescriptor(options, lookup));
    const Interrupt interrupt(workers->stop, [&line] { line.close(); });
    LookupPool pool(static_cast<unsigned int>(workers->statuses.size()), pathsOf(options),
                    [workers](const std::string& path, unsigned int worker) {
                        return workers->lookUp(path, worker);
                    });
    try {
        receiveAll(pool, receiver, line,
                   [&] { return progressOf(options, *workers, pool.handedOut()); });
    } catch (...) {
        interrupt.endTools();
        throw;
    }
}

} // namespace command
