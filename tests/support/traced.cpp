#include "tests/support/traced.h"

void append(TraceLines& lines, const Line& line)
{
    lines.emplace_back(line);
}

void append(TraceLines& lines, const std::vector<Line>& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
}

void append(TraceLines& lines, const TraceLines& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
}
