// Properties of the line of any text.
#include "pdk/include/czetracesink.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <sys/mman.h>

#include "tests/support/harmless_text.h"
#include "tests/support/hostile_text.h"
#include "tests/support/process.h"

using koze_pdk_4_4::CZeTraceDescriptorSink;

namespace {

/// The line that the sink writes for the text, without time stamp, process id and level.
std::string written(const std::string& text)
{
    const Descriptor file(memfd_create("trace", MFD_CLOEXEC));
    CZeTraceDescriptorSink(6, file.number()).write(2, text);
    std::string line(100 + 4 * text.size(), '\0');
    const ssize_t size = pread(file.number(), line.data(), line.size(), 0);
    line.resize(static_cast<std::size_t>(size));
    constexpr std::string_view level = "] 2 ";
    return line.substr(line.find(level) + level.size());
}

RC_GTEST_PROP(AnyText, IsOneHarmlessLine, ())
{
    RC_ASSERT(isHarmlessLines(written(*hostileText()), 1));
}

RC_GTEST_PROP(HarmlessText, IsNotAltered, ())
{
    const std::string text = *rc::gen::suchThat(hostileText(), isHarmless);
    RC_ASSERT(written(text) == text + '\n');
}

} // namespace
