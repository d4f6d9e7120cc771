#include "state_file.h"

#include <cstdio>
#include <filesystem>

#include <unistd.h>

#include "error.h"
#include "json_file.h"
#include "json_text.h"

namespace simulator {

State StateFile::load(Json& document) const
{
    document = readJsonFile(m_path);
    try {
        return readState(document, std::filesystem::path(m_path).parent_path().string());
    } catch (const Error& error) {
        throw Error(m_path + ": " + error.what());
    }
}

void StateFile::save(const State& state, Json& document) const
{
    const Json before = document;
    writeState(state, document);
    if (document == before)
        return;
    const std::string next = m_path + ".new";
    const mode_t mode = RegularFile(m_path, O_RDONLY).permissions();
    // A killed call may have left this file. No call writes to it now: this one has the lock.
    unlink(next.c_str());
    RegularFile(next, O_WRONLY | O_CREAT | O_EXCL, mode).write(jsonText(document) + "\n");
    if (std::rename(next.c_str(), m_path.c_str()) != 0)
        failWithErrno("cannot replace", m_path);
}

} // namespace simulator
