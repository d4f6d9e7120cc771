/* Calls every function from C. Ends with 1, and the failed checks on standard error. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#include "vstring/Y_strings.h"

#define CHECK(condition) check(condition, #condition, __LINE__)

static int failures = 0;

static void check(int passed, const char* condition, int line)
{
    if (passed)
        return;
    ++failures;
    (void)fprintf(stderr, "%s:%d: %s\n", __FILE__, line, condition);
}

static void checkNarrow(void)
{
    char dst[8];
    size_t length = 0;
    CHECK(Y_strlcpy(dst, "ab", sizeof dst) == 2 && strcmp(dst, "ab") == 0);
    CHECK(Y_strlcat(dst, "cd", sizeof dst) == 2 && strcmp(dst, "abcd") == 0);
    CHECK(Y_strlncat(dst, "efg", 1, sizeof dst) == 1 && strcmp(dst, "abcde") == 0);
    CHECK(Y_strverify(dst, sizeof dst, &length) == 0 && length == 5);
    CHECK(Y_strlncpy(dst, "xy", 4, sizeof dst) == 4 && memcmp(dst, "xy\0\0", 5) == 0);
}

static void checkWide(void)
{
    wchar_t dst[8];
    size_t length = 0;
    CHECK(Y_wcslcpy(dst, L"ab", 8) == 2 && wcscmp(dst, L"ab") == 0);
    CHECK(Y_wcslcat(dst, L"cd", 8) == 2 && wcscmp(dst, L"abcd") == 0);
    CHECK(Y_wcslncat(dst, L"efg", 1, 8) == 1 && wcscmp(dst, L"abcde") == 0);
    CHECK(Y_wstrverify(dst, 8, &length) == 0 && length == 5);
    CHECK(Y_wcslncpy(dst, L"xy", 4, 8) == 4 && wmemcmp(dst, L"xy\0\0", 5) == 0);
}

static int32_t formatNarrow(char* dst, size_t size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

static int32_t formatNarrow(char* dst, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int32_t length = Y_vsnprintf(dst, size, format, args);
    va_end(args);
    return length;
}

static int32_t formatWide(wchar_t* dst, size_t size, const wchar_t* format, ...)
{
    va_list args;
    va_start(args, format);
    const int32_t length = Y_vsnwprintf(dst, size, format, args);
    va_end(args);
    return length;
}

static void checkFormatters(void)
{
    char narrow[4];
    wchar_t wide[4];
    CHECK(Y_snprintf(narrow, 4, "p%d", 1) == 2 && strcmp(narrow, "p1") == 0);
    CHECK(formatNarrow(narrow, 4, "p%d", 4711) == 3 && strcmp(narrow, "p47") == 0);
    CHECK(Y_snwprintf(wide, 4, L"p%d", 1) == 2 && wcscmp(wide, L"p1") == 0);
    CHECK(formatWide(wide, 4, L"p%d", 4711) == -1 && wcscmp(wide, L"p47") == 0);
}

static void checkRealloc(void)
{
    void* block = NULL;
    CHECK(Y_dumb_realloc(&block, 16) == block && block != NULL);
    CHECK(Y_dumb_realloc(&block, 0) == NULL && block == NULL);
}

int main(void)
{
    checkNarrow();
    checkWide();
    checkFormatters();
    checkRealloc();
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
