#ifndef FUZZ_REQUIRE_H
#define FUZZ_REQUIRE_H

#include <cstdlib>
#include <iostream>

/// Ends the fuzz target with an abort, which libFuzzer reports with its input, unless `condition`
/// holds.
#define FUZZ_REQUIRE(condition)                                                                    \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::cerr << __FILE__ << ":" << __LINE__ << ": " << #condition << "\n";                \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

#endif
