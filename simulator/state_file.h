#ifndef SIMULATOR_STATE_FILE_H
#define SIMULATOR_STATE_FILE_H

#include <string>

#include <fcntl.h>

#include "regular_file.h"
#include "state.h"

namespace simulator {

/// The state file, which many tools may change at once. They lock PATH.lock. A new state replaces
/// the old file by rename, so that a reader always finds a complete file.
class StateFile {
public:
    explicit StateFile(std::string path) : m_path(std::move(path)) {}

    /// Reads the state, lets `work` look at it and change it, and writes it when it has changed,
    /// all under the lock. Returns what `work` returns. Throws an Error when the file is missing,
    /// damaged or cannot be written, and then leaves it as it was.
    template <class Work>
    auto change(Work work) const
    {
        const RegularFile file(m_path + ".lock", O_WRONLY | O_CREAT | O_NOFOLLOW, 0640);
        file.lock();
        Json document;
        State state = load(document);
        auto result = work(state);
        save(state, document);
        return result;
    }

private:
    State load(Json& document) const;
    void save(const State& state, Json& document) const;

    std::string m_path;
};

} // namespace simulator

#endif
