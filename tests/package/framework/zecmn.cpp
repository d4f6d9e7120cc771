#include <cstdio>

#include <sys/wait.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"

namespace koze_pdk_4_4 {

EZeExecPipe::~EZeExecPipe() = default;

CZeExecPipeBase::CZeExecPipeBase(int streams) : m_streams(streams) {}

CZeExecPipeBase::~CZeExecPipeBase() = default;

int CZeExecPipeBase::Exec(const std::string& command, std::vector<std::string>& output,
                          const std::string&, unsigned long, const std::string&, const std::string&,
                          const std::string&)
{
    CZE_TRACE(6, "A runner of %d runs %s", m_streams, command.c_str());
    const std::string program = command.substr(0, command.find(' '));
    if (access(program.c_str(), X_OK) != 0)
        throw EZeExecPipe(program);
    FILE* pipe = popen(command.c_str(), "r");
    std::string line;
    for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe)) {
        if (character != '\n') {
            line += static_cast<char>(character);
            continue;
        }
        output.push_back(line);
        line.clear();
    }
    return WEXITSTATUS(pclose(pipe));
}

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams) {}

CZeExecPipePosix::~CZeExecPipePosix() = default;

} // namespace koze_pdk_4_4
