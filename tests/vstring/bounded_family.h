#ifndef BOUNDED_FAMILY_H
#define BOUNDED_FAMILY_H

#include <cstddef>
#include <cstdint>

#include "vstring/Y_strings.h"

/// The narrow functions by what they do, so that one test serves both families.
struct Narrow {
    using Char = char;
    static constexpr auto copy = Y_strlcpy;
    static constexpr auto append = Y_strlcat;
    static constexpr auto copyPadded = Y_strlncpy;
    static constexpr auto appendCounted = Y_strlncat;
    static constexpr auto verify = Y_strverify;

    static std::int32_t format(char* dst, std::size_t size, const char* text)
    {
        return Y_snprintf(dst, size, "%s", text);
    }
};

/// The wide functions.
struct Wide {
    using Char = wchar_t;
    static constexpr auto copy = Y_wcslcpy;
    static constexpr auto append = Y_wcslcat;
    static constexpr auto copyPadded = Y_wcslncpy;
    static constexpr auto appendCounted = Y_wcslncat;
    static constexpr auto verify = Y_wstrverify;

    static std::int32_t format(wchar_t* dst, std::size_t size, const wchar_t* text)
    {
        return Y_snwprintf(dst, size, L"%ls", text);
    }
};

#endif
