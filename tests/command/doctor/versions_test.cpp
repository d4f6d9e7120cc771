// The file that names the system is replaced here.
#include "doctor/versions.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include <dlfcn.h>

#include "output/json_text.h"
#include "tests/support/temporary_folder.h"

namespace {

std::string& releaseFile()
{
    static std::string path;
    return path;
}

using Open = std::FILE* (*)(const char*, const char*);

std::FILE* openReplaced(const char* function, const char* path, const char* mode)
{
    const bool isRelease = std::strcmp(path, "/etc/os-release") == 0;
    const auto real = reinterpret_cast<Open>(dlsym(RTLD_NEXT, function));
    return real(isRelease ? releaseFile().c_str() : path, mode);
}

} // namespace

// std::ifstream calls one of them.
extern "C" std::FILE* fopen(const char* path, const char* mode)
{
    return openReplaced("fopen", path, mode);
}

extern "C" std::FILE* fopen64(const char* path, const char* mode)
{
    return openReplaced("fopen64", path, mode);
}

namespace {

/// The versions' member "system" where the file holds `text`.
std::string systemOf(const std::string& text)
{
    const TemporaryFolder folder;
    releaseFile() = folder.file("os-release");
    std::ofstream(releaseFile()) << text;
    const std::string line = command::jsonLine(command::versions());
    const std::string key = "\"system\":";
    const std::size_t begin = line.find(key) + key.size();
    return line.substr(begin, line.rfind('}') - begin);
}

TEST(Versions, TheSystemIsWhatItCallsItself)
{
    EXPECT_EQ(systemOf("ID=x\nPRETTY_NAME=\"An Operating System 12 (x)\"\nNAME=\"y\"\n"),
              "\"An Operating System 12 (x)\"");
}

TEST(Versions, ASystemWithoutANameIsNull)
{
    EXPECT_EQ(systemOf("ID=x\nNAME=\"y\"\n"), "null");
    EXPECT_EQ(systemOf(""), "null");
}

} // namespace
