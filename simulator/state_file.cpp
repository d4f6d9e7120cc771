#include "state_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "json_text.h"

namespace simulator {

StateFile::Lock::Lock(const std::string& path)
    : m_file(open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0666))
{
    if (m_file < 0)
        failWithErrno("cannot open", path);
    if (flock(m_file, LOCK_EX) != 0) {
        close(m_file);
        failWithErrno("cannot lock", path);
    }
}

StateFile::Lock::~Lock()
{
    close(m_file);
}

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
    std::ofstream file(next, std::ios::trunc);
    file << jsonText(document) << '\n';
    file.close();
    if (!file || std::rename(next.c_str(), m_path.c_str()) != 0)
        failWithErrno("cannot write", next);
}

} // namespace simulator
