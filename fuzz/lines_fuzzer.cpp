// Any output of a tool, cut into any pieces: the runner returns the lines of the output, up to the
// line that breaks a bound.
//
//     input = piece lines-bound line-bound output
//
// One byte each, and the output takes the rest, which comes in pieces of 1 + `piece` bytes. The
// first bound is in units of 16 bytes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "pdk/zecmn/line_collector.h"
#include "require.h"

using koze_pdk_4_4::runner::Budget;
using koze_pdk_4_4::runner::cost;
using koze_pdk_4_4::runner::LineCollector;

namespace {

struct Collected {
    std::vector<std::string> lines;
    bool isComplete;
};

Collected collect(std::string_view output, std::size_t piece, Budget budget)
{
    Collected collected{};
    LineCollector collector(collected.lines, budget);
    for (; !output.empty(); output.remove_prefix(std::min(piece, output.size())))
        collector.add(output.substr(0, piece));
    collector.finish();
    collected.isComplete = !budget.exceeded;
    return collected;
}

/// Cuts the first line off, without its end.
std::string_view takeLine(std::string_view& output)
{
    const std::size_t end = output.find('\n');
    std::string_view line = output.substr(0, end);
    output.remove_prefix(std::min(line.size() + 1, output.size()));
    if (end != std::string_view::npos && !line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

Collected expected(std::string_view output, Budget budget)
{
    Collected collected{{}, true};
    while (!output.empty()) {
        const std::string_view line = takeLine(output);
        if (line.size() > budget.longestLine || cost(line) > budget.bytesLeft)
            return {collected.lines, false};
        budget.bytesLeft -= cost(line);
        collected.lines.emplace_back(line);
    }
    return collected;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t head = 3;
    if (size < head)
        return 0;
    const std::string output(data + head, data + size);
    const Budget budget{std::size_t{data[1]} * 16, data[2]};
    const Collected found = collect(output, std::size_t{data[0]} + 1, budget);
    const Collected wanted = expected(output, budget);
    FUZZ_REQUIRE(found.lines == wanted.lines);
    FUZZ_REQUIRE(found.isComplete == wanted.isComplete);
    return 0;
}
