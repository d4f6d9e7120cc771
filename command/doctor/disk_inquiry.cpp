#include "doctor/disk_inquiry.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "doctor/trace_recorder.h"
#include "interrupt/start_thread.h"

using koze_pdk_4_4::CZeTraceLogHandle;

namespace command {

namespace {

constexpr std::chrono::milliseconds tick{200};

/// How long workers may take to return after a request to stop. Ending the tools of an interrupt
/// takes up to two seconds.
constexpr std::chrono::milliseconds grace{2500};

/// What the workers share with the caller. Each holds a shared_ptr, because a worker may be
/// detached and outlive the call.
class Questions {
public:
    Questions(const std::vector<std::string>& disks, const InquiryOptions& options,
              std::shared_ptr<StopRequest> stop)
        : m_stop(std::move(stop)), m_forReport(options.forReport), m_trace(options.trace)
    {
        for (const std::string& disk : disks)
            m_answers.push_back({disk});
    }

    void work()
    {
        try {
            TraceRecorder recorder(openTraceSink(m_trace)); // a sink serves one thread
            const CZeTraceLogHandle log = m_forReport ? recorder.openLog() : openTraceLog(m_trace);
            while (const std::optional<Question> next = take())
                answer(*next, log, recorder);
        } catch (const Interrupted&) {
            // The disk stays notAsked.
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            m_failure = std::current_exception();
        }
        const std::lock_guard lock(m_mutex);
        ++m_endedWorkers;
        m_changed.notify_all();
    }

    /// Waits until that many workers have ended, at most for `patience`. Returns whether they have.
    bool awaitEnd(std::size_t workers, std::chrono::milliseconds patience)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, patience, [&] { return m_endedWorkers == workers; });
    }

    /// No further disk is asked about.
    void stop()
    {
        const std::lock_guard lock(m_mutex);
        m_next = m_answers.size();
    }

    std::size_t done() const
    {
        const std::lock_guard lock(m_mutex);
        return m_done;
    }

    /// The answers so far; later ones are not among them.
    std::vector<DiskAnswer> answers() const
    {
        const std::lock_guard lock(m_mutex);
        if (m_failure)
            std::rethrow_exception(m_failure);
        return m_answers;
    }

private:
    struct Question {
        std::size_t number;
        std::string disk;
    };

    std::optional<Question> take()
    {
        const std::lock_guard lock(m_mutex);
        if (m_next == m_answers.size())
            return std::nullopt;
        const std::size_t number = m_next++;
        return Question{number, m_answers[number].path};
    }

    void answer(const Question& question, const CZeTraceLogHandle& log, TraceRecorder& recorder)
    {
        DiskAnswer answer = askAboutDisk(question.disk, log, *m_stop, m_forReport);
        answer.trace = recorder.takeLines();
        const std::lock_guard lock(m_mutex);
        if (answer.mustBeLast())
            m_next = m_answers.size();
        m_answers[question.number] = std::move(answer);
        ++m_done;
    }

    const std::shared_ptr<StopRequest> m_stop;
    const bool m_forReport;
    const TraceOptions m_trace;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<DiskAnswer> m_answers;
    std::size_t m_next = 0;
    std::size_t m_done = 0;
    std::size_t m_endedWorkers = 0;
    std::exception_ptr m_failure;
};

/// Threads that ask. Its end waits for them, and leaves those behind that take too long.
class Workers {
public:
    /// Starts `count` threads, or as many as the machine allows. Throws what startThread throws
    /// when it allows none.
    Workers(std::shared_ptr<Questions> questions, std::size_t count)
        : m_questions(std::move(questions))
    {
        m_threads.reserve(count);
        try {
            while (m_threads.size() < count)
                m_threads.push_back(startThread([asked = m_questions] { asked->work(); }));
        } catch (const std::exception&) {
            if (m_threads.empty())
                throw;
        }
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    ~Workers()
    {
        m_questions->stop();
        const bool haveEnded = haveEndedWithin(grace);
        for (std::thread& thread : m_threads)
            haveEnded ? thread.join() : thread.detach();
    }

    /// Returns once the workers have ended, or were told to end.
    void await(const InquiryOptions& options, const StopRequest& stop) const
    {
        while (!stop.isRequested() && !haveEndedWithin(tick))
            options.progress(m_questions->done());
    }

private:
    bool haveEndedWithin(std::chrono::milliseconds patience) const
    {
        return m_questions->awaitEnd(m_threads.size(), patience);
    }

    const std::shared_ptr<Questions> m_questions;
    std::vector<std::thread> m_threads;
};

} // namespace

std::vector<DiskAnswer> askAboutDisks(const std::vector<std::string>& disks,
                                      const InquiryOptions& options,
                                      const std::shared_ptr<StopRequest>& stop)
{
    const auto questions = std::make_shared<Questions>(disks, options, stop);
    {
        const Workers workers(questions, std::min<std::size_t>(options.jobs, disks.size()));
        workers.await(options, *stop);
    }
    return questions->answers();
}

} // namespace command
