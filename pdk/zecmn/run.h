#ifndef ZECMN_RUN_H
#define ZECMN_RUN_H

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "program.h"

namespace koze_pdk_4_4::runner {

struct Limits {
    std::chrono::nanoseconds time;
    std::chrono::nanoseconds grace;
    std::size_t outputBytes;
    std::size_t lineBytes;
};

/// Runs `program` with `input` as its standard input and appends the lines of its streams to
/// `output` and `errors`; both may be the same list, which makes them one stream. Returns what
/// CZeExecPipeBase::Exec returns; throws std::system_error when the program cannot be started.
int run(Program program, const std::string& input, const Limits& limits,
        std::vector<std::string>& output, std::vector<std::string>& errors);

} // namespace koze_pdk_4_4::runner

#endif
