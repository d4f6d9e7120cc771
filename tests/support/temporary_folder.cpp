#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

TemporaryFolder::TemporaryFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "dmpclaim-XXXXXX").string();
    m_path = mkdtemp(path.data());
}

TemporaryFolder::~TemporaryFolder()
{
    std::filesystem::remove_all(m_path);
}

std::string textOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

std::vector<std::string> linesOf(const std::string& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

void writeScript(const std::filesystem::path& path, const std::string& script)
{
    std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
    permissions(path, std::filesystem::perms::owner_all);
}
