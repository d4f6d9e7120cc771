#ifndef Y_STRINGS_H
#define Y_STRINGS_H

/* Bounded string functions, for C11 and C++. None of them writes past the buffer it is given, keeps
 * state, or touches errno itself; all are safe between threads. Sizes are capacities in characters
 * and include the terminator. */

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#define Y_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* Formats into `dst`, which holds `size` characters, as vsnprintf does.
 *
 * Returns the number of characters written without the terminator, size - 1 at most: the result
 * does not tell how long a text that was cut would have been. Returns -1 and writes nothing when
 * `dst` is null or `size` is 0. When the text cannot be formatted, `dst` becomes the empty string
 * and the result is 0. Sizes and results compare as signed 32-bit integers. */
Y_EXPORT int32_t Y_vsnprintf(char* dst, size_t size, const char* format, va_list args)
    __attribute__((format(printf, 3, 0)));

/* Y_vsnprintf with its arguments in place. */
Y_EXPORT int32_t Y_snprintf(char* dst, size_t size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif

#endif
