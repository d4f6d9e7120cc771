#include "pdk/include/czeexecpipe.h"

namespace koze_pdk_4_4 {

EZeExecPipe::~EZeExecPipe() = default;

CZeExecPipeBase::CZeExecPipeBase(int streams) : m_streams(streams)
{
    if (streams != 1 && streams != 2)
        throw std::invalid_argument("a runner delivers one stream or two");
}

CZeExecPipeBase::~CZeExecPipeBase() = default;

int CZeExecPipeBase::Exec(const std::string& command, std::vector<std::string>& /*output*/,
                          const std::string& /*directory*/, unsigned long /*timeLimitSeconds*/,
                          const std::string& /*user*/, const std::string& /*environment*/,
                          const std::string& /*input*/)
{
    throw EZeExecPipe("cannot run " + command + ": no runner for " + std::to_string(m_streams) +
                      " streams yet");
}

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams) {}

CZeExecPipePosix::~CZeExecPipePosix() = default;

} // namespace koze_pdk_4_4
