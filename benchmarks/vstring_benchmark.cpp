// What the bounded string functions cost against functions of the same arguments that only make
// the C library's calls: no check of pointers, no call into another library.
#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "benchmarks/comparison.h"
#include "vstring/Y_strings.h"

namespace {

struct Narrow {
    using Char = char;
    static constexpr auto copy = Y_strlcpy;
    static constexpr auto append = Y_strlcat;
    static constexpr auto copyPadded = Y_strlncpy;
    static constexpr auto appendCounted = Y_strlncat;
    static constexpr auto verify = Y_strverify;
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto copy = Y_wcslcpy;
    static constexpr auto append = Y_wcslcat;
    static constexpr auto copyPadded = Y_wcslncpy;
    static constexpr auto appendCounted = Y_wcslncat;
    static constexpr auto verify = Y_wstrverify;
};

std::size_t measure(const char* text, std::size_t limit)
{
    return strnlen(text, limit);
}

std::size_t measure(const wchar_t* text, std::size_t limit)
{
    return wcsnlen(text, limit);
}

template <class Character>
struct Reference {
    using Char = Character;
    using Traits = std::char_traits<Char>;

    [[gnu::noinline]] static std::size_t copy(Char* dst, const Char* src, std::size_t size)
    {
        const std::size_t length = measure(src, size - 1);
        Traits::copy(dst, src, length);
        dst[length] = 0;
        return length;
    }

    [[gnu::noinline]] static std::size_t append(Char* dst, const Char* src, std::size_t size)
    {
        const std::size_t end = measure(dst, size);
        const std::size_t length = measure(src, size - end - 1);
        Traits::copy(dst + end, src, length);
        dst[end + length] = 0;
        return length;
    }

    [[gnu::noinline]] static std::size_t copyPadded(Char* dst, const Char* src, std::size_t count,
                                                    std::size_t size)
    {
        const std::size_t limit = std::min(count, size - 1);
        const std::size_t length = measure(src, limit);
        Traits::copy(dst, src, length);
        Traits::assign(dst + length, limit - length, 0);
        dst[limit] = 0;
        return limit;
    }

    [[gnu::noinline]] static std::size_t appendCounted(Char* dst, const Char* src,
                                                       std::size_t count, std::size_t size)
    {
        const std::size_t end = measure(dst, size);
        const std::size_t length = measure(src, std::min(count, size - end - 1));
        Traits::copy(dst + end, src, length);
        dst[end + length] = 0;
        return length;
    }

    [[gnu::noinline]] static std::int32_t verify(const Char* buf, std::size_t size,
                                                 std::size_t* length)
    {
        *length = measure(buf, size);
        return *length < size ? 0 : -1;
    }
};

/// A source of so many bytes, and a destination with room for two of it.
template <class Char, std::size_t bytes>
struct Strings {
    std::size_t length = bytes / sizeof(Char);
    std::basic_string<Char> source = std::basic_string<Char>(length, Char('s'));
    std::vector<Char> destination = std::vector<Char>(2 * length + 1, Char('d'));
    const Char* src = source.c_str();
    Char* dst = destination.data();
    std::size_t size = destination.size();
};

/// Both sides of a pair use these: the cost of copying depends on where the strings lie.
template <class Char, std::size_t bytes>
Strings<Char, bytes> strings;

struct Copy {
    template <class Functions, class Strings>
    static std::size_t call(const Strings& on)
    {
        return Functions::copy(on.dst, on.src, on.size);
    }
};

struct Append {
    template <class Functions, class Strings>
    static std::size_t call(const Strings& on)
    {
        return Functions::append(on.dst, on.src, on.size);
    }
};

struct CopyPadded {
    template <class Functions, class Strings>
    static std::size_t call(const Strings& on)
    {
        return Functions::copyPadded(on.dst, on.src, on.size, on.size);
    }
};

struct AppendCounted {
    template <class Functions, class Strings>
    static std::size_t call(const Strings& on)
    {
        return Functions::appendCounted(on.dst, on.src, on.length, on.size);
    }
};

struct Verify {
    template <class Functions, class Strings>
    static std::size_t call(const Strings& on)
    {
        std::size_t length = 0;
        keep(Functions::verify(on.src, on.size, &length));
        return length;
    }
};

/// Each round begins with a string of `length` characters in the destination.
template <class Functions, class Operation, std::size_t bytes>
Measure calling()
{
    return computing([] {
        auto& on = strings<typename Functions::Char, bytes>;
        on.dst[on.length] = 0;
        keep(on);
        keep(Operation::template call<Functions>(on));
    });
}

template <class Ours, class Operation, std::size_t bytes>
void compareAt(const std::string& name)
{
    compare(name, {{"ours", calling<Ours, Operation, bytes>()},
                   {"C library", calling<Reference<typename Ours::Char>, Operation, bytes>()}});
}

template <class Ours, class Operation>
void compareSizes(const std::string& name)
{
    compareAt<Ours, Operation, 16>(name + " 16 B");
    compareAt<Ours, Operation, 1024>(name + " 1 KiB");
    compareAt<Ours, Operation, 1048576>(name + " 1 MiB");
}

} // namespace

int main()
{
    compareSizes<Narrow, Copy>("Y_strlcpy");
    compareSizes<Wide, Copy>("Y_wcslcpy");
    compareSizes<Narrow, Append>("Y_strlcat");
    compareSizes<Wide, Append>("Y_wcslcat");
    compareSizes<Narrow, CopyPadded>("Y_strlncpy");
    compareSizes<Wide, CopyPadded>("Y_wcslncpy");
    compareSizes<Narrow, AppendCounted>("Y_strlncat");
    compareSizes<Wide, AppendCounted>("Y_wcslncat");
    compareSizes<Narrow, Verify>("Y_strverify");
    compareSizes<Wide, Verify>("Y_wstrverify");
}
