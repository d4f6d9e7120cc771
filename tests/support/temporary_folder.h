#ifndef TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <filesystem>
#include <string>
#include <vector>

/// A folder of the test's own, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

/// The whole file; empty when there is none.
std::string textOf(const std::string& path);

/// The lines of the file, without their ends.
std::vector<std::string> linesOf(const std::string& path);

/// Writes a program for the shell.
void writeScript(const std::filesystem::path& path, const std::string& script);

#endif
