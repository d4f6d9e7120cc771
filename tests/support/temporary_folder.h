#ifndef TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

/// A folder of the test's own, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "dmpclaim-XXXXXX").string();
        m_path = mkdtemp(path.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }

    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

/// The whole file; empty when there is none.
inline std::string textOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

/// The lines of the file, without their ends.
inline std::vector<std::string> linesOf(const std::string& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

/// Writes a program for the shell.
inline void writeScript(const std::filesystem::path& path, const std::string& script)
{
    std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
    permissions(path, std::filesystem::perms::owner_all);
}

#endif
