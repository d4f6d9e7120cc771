#include "run.h"

#include <csignal>
#include <memory>
#include <utility>

#include <poll.h>

#include "child_process.h"
#include "deadline.h"
#include "descriptor.h"
#include "ending.h"
#include "output_reader.h"

namespace koze_pdk_4_4::runner {

namespace {

/// A started program and the readers of its streams; the second is closed when both are one stream.
class Run {
public:
    Run(ChildProcess& child, OutputReader (&readers)[2], const Budget& budget)
        : m_child(child), m_readers(readers), m_budget(budget)
    {}

    int follow(const Deadline& deadline, std::chrono::nanoseconds grace);

private:
    void advance(const Deadline& deadline);
    void finish();
    void end(const Deadline& grace);

    ChildProcess& m_child;
    OutputReader (&m_readers)[2];
    const Budget& m_budget;
    bool m_ended = false;
};

/// Reads until the program ends and returns its result. Ends the program when the deadline passes
/// or the budget is exceeded.
int Run::follow(const Deadline& deadline, std::chrono::nanoseconds grace)
{
    while (!m_ended && !m_budget.exceeded && !deadline.passed())
        advance(deadline);
    if (m_ended) {
        finish();
        if (!m_budget.exceeded)
            return m_child.reap();
    }
    const Ending ending{m_budget.exceeded ? Ending::Kind::boundExceeded
                                          : Ending::Kind::deadlinePassed};
    end(Deadline(grace));
    finish();
    return resultOf(ending);
}

/// Waits for output, the program's end or the deadline, reads the output and notes the end.
void Run::advance(const Deadline& deadline)
{
    const bool mustPoll = !m_ended && m_child.descriptor() < 0;
    pollfd events[] = {{m_readers[0].descriptor(), POLLIN, 0},
                       {m_readers[1].descriptor(), POLLIN, 0},
                       {m_ended ? -1 : m_child.descriptor(), POLLIN, 0}};
    poll(events, 3, deadline.timeout(mustPoll ? pollInterval : std::chrono::hours(1)));
    for (int stream = 0; stream < 2; ++stream) {
        if (events[stream].revents != 0)
            m_readers[stream].read();
    }
    if (mustPoll || events[2].revents != 0)
        m_ended = m_child.ended();
}

void Run::finish()
{
    for (OutputReader& reader : m_readers)
        reader.finish();
}

/// Sends SIGTERM to the process group, and SIGKILL when `grace` passes or the program has ended and
/// all its streams are closed.
void Run::end(const Deadline& grace)
{
    m_child.signal(SIGTERM);
    m_child.signal(SIGCONT); // a stopped process handles SIGTERM only once it is continued
    while ((!m_ended || m_readers[0].isOpen() || m_readers[1].isOpen()) && !grace.passed())
        advance(grace);
    m_child.kill();
}

} // namespace

int run(Program program, const std::string& input, const Limits& limits,
        std::vector<std::string>& output, std::vector<std::string>& errors)
{
    const Deadline deadline(limits.time);
    const bool together = &output == &errors;
    Descriptor standardInput = openInput(input);
    Pipe outputPipe = openPipe();
    Pipe errorsPipe = together ? Pipe() : openPipe();
    Budget budget{limits.outputBytes, limits.lineBytes};
    OutputReader readers[] = {{std::move(outputPipe.readEnd), output, budget},
                              {std::move(errorsPipe.readEnd), errors, budget}};
    ChildProcess child(std::make_unique<ChildPlan>(
        std::move(program),
        StandardStreams{standardInput.number(), outputPipe.writeEnd.number(),
                        (together ? outputPipe : errorsPipe).writeEnd.number()}));
    if (!child.start(deadline))
        return resultOf({Ending::Kind::deadlinePassed});
    // The program has its own copies. A pipe ends when its last writer is closed.
    outputPipe.writeEnd.reset();
    errorsPipe.writeEnd.reset();
    standardInput.reset();
    return Run(child, readers, budget).follow(deadline, limits.grace);
}

} // namespace koze_pdk_4_4::runner
