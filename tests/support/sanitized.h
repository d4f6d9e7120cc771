#ifndef TESTS_SUPPORT_SANITIZED_H
#define TESTS_SUPPORT_SANITIZED_H

/// Whether a sanitizer takes memory besides the program's own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

#endif
