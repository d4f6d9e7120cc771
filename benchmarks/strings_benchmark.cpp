// What splitting and searching the tables of the volume manager's tools costs.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "pdk/include/czestringtool.h"

namespace {

using koze_pdk_4_4::CZeStringTool;

const std::string row = "sdc     ENABLED(A)    PRIMARY      c2";

void tokenize(benchmark::State& state)
{
    const std::string delimiters = " \n\t";
    for (auto _ : state)
        benchmark::DoNotOptimize(CZeStringTool::tokenize(row, delimiters));
}

std::vector<std::string> splitInCopy(const std::string& text, const char* delimiters)
{
    std::vector<std::string> pieces;
    std::string copy = text;
    char* rest = nullptr;
    for (char* piece = strtok_r(copy.data(), delimiters, &rest); piece != nullptr;
         piece = strtok_r(nullptr, delimiters, &rest))
        pieces.emplace_back(piece);
    return pieces;
}

void strtokLoop(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(splitInCopy(row, " \n\t"));
}

void findInTable(benchmark::State& state)
{
    const std::vector<std::string> table(static_cast<std::size_t>(state.range(0)), row);
    for (auto _ : state) {
        unsigned long index = 0;
        benchmark::DoNotOptimize(CZeStringTool::find(table, "NAME", index, false));
    }
}

BENCHMARK(tokenize)->Name("tokenize against strtok_r/ours");
BENCHMARK(strtokLoop)->Name("tokenize against strtok_r/reference");
// One pass: ten times the lines cost ten times the time.
BENCHMARK(findInTable)->Name("find in 100000 lines against 10000/ours")->Arg(100000);
BENCHMARK(findInTable)->Name("find in 100000 lines against 10000/reference")->Arg(10000);

} // namespace
