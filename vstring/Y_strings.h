#ifndef Y_STRINGS_H
#define Y_STRINGS_H

/** @file
 * Bounded string functions, for C11 and C++. None of them writes past the buffer it is given, keeps
 * state, or sets or reads errno itself; the C library's formatters and allocation may set it. All
 * are safe between threads that do not share a buffer.
 *
 * A narrow function and its wide twin differ in nothing but the character type, except for the
 * formatters.
 *
 * Sizes are capacities of buffers in characters, terminator included: bytes for narrow strings,
 * wchar_t of 4 bytes for wide ones. Counts and results are characters without a terminator; the
 * count SIZE_MAX sets no limit.
 *
 * Sources are read up to their terminator, or up to the last character that finds room; one that
 * is at least so long needs no terminator. Source and destination must not overlap.
 *
 * Copying and appending return the number of characters written, not the length that the text
 * would have had in full. Where the result is the number of characters taken from a terminated
 * source, it is also the place of the first one that found no room:
 *
 *     char name[32];
 *     if (path[Y_strlcpy(name, path, sizeof name)] != '\0')
 *         return -1; // `path` was cut
 */

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

/** Marks what leaves the library. */
#define Y_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/** Copies `src` into `dst`, which holds `size` characters: size - 1 of them at most, and a
 * terminator. Size 1 makes `dst` the empty string.
 *
 * Returns the number of characters copied. Returns 0 and writes nothing when `dst` or `src` is null
 * or `size` is 0; the result alone does not tell this from an empty source. When `src` has a
 * terminator, it is src[result] exactly when all of `src` was copied. */
Y_EXPORT size_t Y_strlcpy(char* dst, const char* src, size_t size);
/** Y_strlcpy for wide strings. */
Y_EXPORT size_t Y_wcslcpy(wchar_t* dst, const wchar_t* src, size_t size);

/** Appends `src` to the string in `dst`, which holds `size` characters: as many as fit, and a
 * terminator.
 *
 * Returns the number of characters appended. Returns 0 and writes nothing when `dst` or `src` is
 * null, when `size` is 0, when the first `size` characters of `dst` have no terminator, or when
 * they have no room for another character; the result alone does not tell these from an empty
 * source. When `src` has a terminator, it is src[result] exactly when all of `src` was appended. */
Y_EXPORT size_t Y_strlcat(char* dst, const char* src, size_t size);
/** Y_strlcat for wide strings. */
Y_EXPORT size_t Y_wcslcat(wchar_t* dst, const wchar_t* src, size_t size);

/** Copies at most `count` characters of `src` into `dst`, which holds `size` characters, fills the
 * rest of the count with zeros and writes a terminator behind it. A count above size - 1 counts as
 * size - 1, so that all of `dst` is written then.
 *
 * Returns the smaller of `count` and size - 1, zeros that fill included: the result tells neither
 * the length of the copy nor whether `src` was cut. Returns 0 and writes nothing when `dst` or
 * `src` is null or `size` is 0; a count of 0 or a size of 1 returns 0 too and makes `dst` the empty
 * string. */
Y_EXPORT size_t Y_strlncpy(char* dst, const char* src, size_t count, size_t size);
/** Y_strlncpy for wide strings. */
Y_EXPORT size_t Y_wcslncpy(wchar_t* dst, const wchar_t* src, size_t count, size_t size);

/** Appends at most `count` characters of `src` to the string in `dst`, which holds `size`
 * characters: as many as fit, and a terminator. REQUIRES: `dst` is not null.
 *
 * Returns the number of characters appended. Returns 0 and writes nothing when `src` is null, when
 * `count` or `size` is 0, when the first `size` characters of `dst` have no terminator, or when
 * they have no room for another character; the result alone does not tell these from an empty
 * source. A result below `count` means that `src` was cut for want of room, unless src[result] is
 * its terminator. */
Y_EXPORT size_t Y_strlncat(char* dst, const char* src, size_t count, size_t size)
    __attribute__((nonnull(1)));
/** Y_strlncat for wide strings. */
Y_EXPORT size_t Y_wcslncat(wchar_t* dst, const wchar_t* src, size_t count, size_t size)
    __attribute__((nonnull(1)));

/** Looks for a terminator among the first `size` characters of `buf`, and reads no others.
 *
 * Returns 0 and stores the number of characters before the terminator in `length`. Returns -1 and
 * stores 0 when there is none, when `size` is 0 or when `buf` is null; the result does not tell
 * these apart. `length` may be null: nothing is stored then. */
Y_EXPORT int32_t Y_strverify(const char* buf, size_t size, size_t* length);
/** Y_strverify for wide strings. */
Y_EXPORT int32_t Y_wstrverify(const wchar_t* buf, size_t size, size_t* length);

/** Formats into `dst`, which holds `size` characters, as vsnprintf does. `format` and its arguments
 * must not overlap `dst`.
 *
 * Returns the number of characters written without the terminator, size - 1 at most: the result
 * does not tell how long a text that was cut would have been, and size - 1 may be a text that just
 * fits. Returns -1 and writes nothing when `dst` is null or `size` is 0. When the text cannot be
 * formatted, `dst` becomes the empty string and the result is 0.
 *
 * Sizes are meant to be INT32_MAX at most. The low 32 bits of a larger one, as a signed integer,
 * are what the length is compared with; a text that is not below them counts as cut, so that
 * dst[size - 1] becomes a terminator and the result is the low 32 bits of size - 1. */
Y_EXPORT int32_t Y_vsnprintf(char* dst, size_t size, const char* format, va_list args)
    __attribute__((format(printf, 3, 0)));

/** Y_vsnprintf with its arguments in place. */
Y_EXPORT int32_t Y_snprintf(char* dst, size_t size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/** Formats into `dst`, which holds `size` wide characters, as vswprintf does, by way of a block of
 * `size` wide characters that is allocated and freed. `format` and its arguments may lie in `dst`.
 * With a null `dst` the text is formatted and dropped.
 *
 * Returns the number of wide characters of the text without the terminator, size - 1 at most. A
 * wide zero that an argument puts into the text ends what `dst` gets; the result counts the whole
 * text all the same.
 *
 * Returns -1, which does not tell these apart,
 *   - when `size` is 0: nothing is written;
 *   - when there is no memory for the block, which holds for every size above PTRDIFF_MAX bytes:
 *     nothing is written;
 *   - when the text does not fit: `dst` holds its first size - 1 characters and a terminator;
 *   - when the text cannot be formatted: `dst` holds what came before, with a terminator.
 * A caller that sets dst[0] to 0 first finds a terminated string in `dst` in each case. */
Y_EXPORT int32_t Y_vsnwprintf(wchar_t* dst, size_t size, const wchar_t* format, va_list args);

/** Y_vsnwprintf with its arguments in place. */
Y_EXPORT int32_t Y_snwprintf(wchar_t* dst, size_t size, const wchar_t* format, ...);

/** Resizes the block that `*block` points to, which came from malloc, calloc or realloc or is null,
 * to `size` bytes, as realloc does. Unlike realloc, a failure frees the old block.
 *
 * Returns the new block, which the caller frees, and stores it in `*block`: null when there is no
 * memory, and the old block is freed. Size 0 frees the old block, and the result is null too; with
 * a null `*block` the result is a block of no bytes, to be freed like any other. Returns null and
 * does nothing when `block` itself is null. */
Y_EXPORT void* Y_dumb_realloc(void** block, size_t size);

#ifdef __cplusplus
}
#endif

#endif
