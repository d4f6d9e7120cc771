// What splitting and searching the tables of the volume manager's tools costs.
#include <cstring>
#include <string>
#include <vector>

#include "benchmarks/comparison.h"
#include "pdk/include/czestringtool.h"

namespace {

using koze_pdk_4_4::CZeStringTool;

const std::string row = "sdc     ENABLED(A)    PRIMARY      c2";

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

} // namespace

int main()
{
    const std::string delimiters = " \n\t";
    compare("split a row of a table",
            {{"ours", computing([&] { keep(CZeStringTool::tokenize(row, delimiters)); })},
             {"strtok_r", computing([&] { keep(splitInCopy(row, delimiters.c_str())); })}});

    // One pass: ten times the lines cost ten times the time.
    const auto find = [](std::size_t lines) {
        return computing([table = std::vector<std::string>(lines, row)] {
            unsigned long index = 0;
            keep(CZeStringTool::find(table, "NAME", index, false));
        });
    };
    compare("search so many lines",
            {{"1000", find(1000)}, {"10000", find(10000)}, {"100000", find(100000)}});
}
