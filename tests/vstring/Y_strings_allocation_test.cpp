// What the functions that allocate do with the heap.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "vstring/Y_strings.h"

namespace {

/// The calls that reach the heap while `watched`; all but `free` fail when `exhausted`.
struct Heap {
    bool watched = false;
    bool exhausted = false;
    int mallocs = 0;
    std::size_t mallocBytes = 0;
    void* mallocBlock = nullptr;
    int reallocs = 0;
    int frees = 0;
    void* freed = nullptr;
};

Heap heap;

} // namespace

// The linker sends every call of the heap in this program to __wrap_NAME, and calls of __real_NAME
// to the C library.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size)
{
    if (!heap.watched)
        return __real_malloc(size);
    ++heap.mallocs;
    heap.mallocBytes = size;
    heap.mallocBlock = heap.exhausted ? nullptr : __real_malloc(size);
    return heap.mallocBlock;
}

void* __wrap_realloc(void* block, std::size_t size)
{
    if (!heap.watched)
        return __real_realloc(block, size);
    ++heap.reallocs;
    return heap.exhausted ? nullptr : __real_realloc(block, size);
}

void __wrap_free(void* block)
{
    if (heap.watched) {
        ++heap.frees;
        heap.freed = block;
    }
    __real_free(block);
}
}

namespace {

/// Runs `call` on a watched heap and returns what reached the heap.
template <class Call>
Heap watch(bool exhausted, Call call)
{
    heap = Heap();
    heap.exhausted = exhausted;
    heap.watched = true;
    call();
    heap.watched = false;
    return heap;
}

TEST(WideFormatterOnTheHeap, FreesTheOneBlockItFormatsInto)
{
    wchar_t dst[7] = L"dddddd";
    int32_t result = 0;
    const Heap calls = watch(false, [&] { result = Y_snwprintf(dst, 7, L"%ls", L"ab"); });
    ASSERT_EQ(calls.mallocs, 1);
    EXPECT_EQ(calls.mallocBytes, 7 * sizeof(wchar_t));
    EXPECT_EQ(calls.frees, 1);
    EXPECT_EQ(calls.freed, calls.mallocBlock);
    EXPECT_EQ(result, 2);
    EXPECT_STREQ(dst, L"ab");
}

TEST(WideFormatterOnTheHeap, LeavesTheDestinationAloneWhenMemoryIsExhausted)
{
    wchar_t dst[7] = L"dddddd";
    int32_t result = 0;
    const Heap calls = watch(true, [&] { result = Y_snwprintf(dst, 7, L"%ls", L"ab"); });
    ASSERT_EQ(calls.mallocs, 1);
    EXPECT_EQ(result, -1);
    EXPECT_STREQ(dst, L"dddddd");
}

TEST(WideFormatterOnTheHeap, LeavesTheHeapAloneInSizeZero)
{
    wchar_t dst[7] = L"dddddd";
    EXPECT_EQ(watch(false, [&] { Y_snwprintf(dst, 0, L"ab"); }).mallocs, 0);
}

TEST(WideFormatterOnTheHeap, AsksForTheLargestSizeButNoneBeyondTheAddressSpace)
{
    const std::size_t largest = PTRDIFF_MAX / sizeof(wchar_t);
    wchar_t dst[7] = L"dddddd";
    EXPECT_EQ(watch(true, [&] { Y_snwprintf(dst, largest, L"ab"); }).mallocs, 1);
    EXPECT_EQ(watch(true, [&] { Y_snwprintf(dst, largest + 1, L"ab"); }).mallocs, 0);
}

TEST(DumbRealloc, ReturnsAndStoresTheResizedBlock)
{
    void* block = std::malloc(4);
    std::memcpy(block, "abc", 4);
    void* result = nullptr;
    const Heap calls = watch(false, [&] { result = Y_dumb_realloc(&block, 100000); });
    ASSERT_EQ(calls.reallocs, 1);
    EXPECT_EQ(result, block);
    EXPECT_STREQ(static_cast<char*>(block), "abc");
    std::free(block);
}

TEST(DumbRealloc, MakesABlockWhereThereIsNone)
{
    void* block = nullptr;
    void* result = nullptr;
    const Heap calls = watch(false, [&] { result = Y_dumb_realloc(&block, 4); });
    ASSERT_EQ(calls.reallocs, 1);
    EXPECT_NE(result, nullptr);
    EXPECT_EQ(result, block);
    std::free(block);
}

TEST(DumbRealloc, FreesTheOldBlockWhenMemoryIsExhausted)
{
    void* block = std::malloc(4);
    void* const old = block;
    void* result = &block;
    const Heap calls = watch(true, [&] { result = Y_dumb_realloc(&block, 8); });
    ASSERT_EQ(calls.reallocs, 1);
    EXPECT_EQ(calls.frees, 1);
    EXPECT_EQ(calls.freed, old);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(block, nullptr);
}

TEST(DumbRealloc, FreesNothingWhenThereWasNoBlock)
{
    void* block = nullptr;
    void* result = &block;
    const Heap calls = watch(true, [&] { result = Y_dumb_realloc(&block, 8); });
    ASSERT_EQ(calls.reallocs, 1);
    EXPECT_EQ(calls.frees, 0);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(block, nullptr);
}

TEST(DumbRealloc, LeavesTheFreeingToReallocWhenTheSizeIsZero)
{
    void* block = std::malloc(4);
    void* result = &block;
    const Heap calls = watch(false, [&] { result = Y_dumb_realloc(&block, 0); });
    ASSERT_EQ(calls.reallocs, 1);
    EXPECT_EQ(calls.frees, 0);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(block, nullptr);
}

TEST(DumbRealloc, MakesABlockOfNoBytesFromNone)
{
    void* block = nullptr;
    EXPECT_NE(Y_dumb_realloc(&block, 0), nullptr);
    std::free(block);
}

TEST(DumbRealloc, DoesNothingWithoutTheAddressOfABlock)
{
    void* result = &heap;
    const Heap calls = watch(false, [&] { result = Y_dumb_realloc(nullptr, 8); });
    EXPECT_EQ(calls.reallocs, 0);
    EXPECT_EQ(result, nullptr);
}

} // namespace
