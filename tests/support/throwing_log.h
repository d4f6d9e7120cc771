#ifndef TESTS_SUPPORT_THROWING_LOG_H
#define TESTS_SUPPORT_THROWING_LOG_H

#include <stdexcept>
#include <string>
#include <string_view>

#include "pdk/include/czetracelog.h"

/// A log that throws std::domain_error at each line that begins with `start`.
inline koze_pdk_4_4::CZeTraceLogHandle throwingLog(const std::string& start)
{
    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    log->setSink(new koze_pdk_4_4::CZeTraceCallbackSink(6, [start](int, std::string_view line) {
        if (line.substr(0, start.size()) == start)
            throw std::domain_error("log");
    }));
    return log;
}

#endif
