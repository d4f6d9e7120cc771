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
};

/// The wide functions.
struct Wide {
    using Char = wchar_t;
    static constexpr auto copy = Y_wcslcpy;
    static constexpr auto append = Y_wcslcat;
    static constexpr auto copyPadded = Y_wcslncpy;
    static constexpr auto appendCounted = Y_wcslncat;
    static constexpr auto verify = Y_wstrverify;
};

#endif
