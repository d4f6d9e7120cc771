// Any bytes as a name: no output lets a control character through, or a byte that is not UTF-8, and
// the trace alters nothing else.
#include <cstddef>
#include <cstdint>
#include <string>

#include <locale.h>

#include "pdk/zepdk/printable_text.h"
#include "require.h"
#include "tests/support/harmless_text.h"
#include "text/printable.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const locale_t ascii = newlocale(LC_CTYPE_MASK, "C", locale_t{});
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
    const std::string text(data, data + size);
    std::string line;
    appendPrintable(line, text);
    FUZZ_REQUIRE(isHarmless(line));
    FUZZ_REQUIRE((line == text) == isHarmless(text));
    for (const locale_t locale : {ascii, utf8}) {
        FUZZ_REQUIRE(uselocale(locale) != locale_t{});
        FUZZ_REQUIRE(isHarmless(command::printable(text)));
    }
    FUZZ_REQUIRE(isHarmless(command::printableWord(text)));
    return 0;
}
