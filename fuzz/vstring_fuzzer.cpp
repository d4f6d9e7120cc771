// Any strings and limits: the copy, append, check and formatting functions, narrow and wide, do as
// their models do, on buffers that end at an inaccessible page.
//
//     input = function size count filling source
//
// One byte each, and the source takes the rest. The lowest bit of `function` chooses the wide
// functions, the others one from the list in `agrees`. The count 255 stands for SIZE_MAX. The
// destination holds `filling` characters and a terminator, or no terminator when its size ends
// before: "\x06\x05\x01\x02" "abc" has Y_strlncat append "a" to two characters in a size of five.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "require.h"
#include "tests/vstring/bounded_family.h"
#include "tests/vstring/differential.h"

namespace {

struct Input {
    std::size_t function;
    std::size_t size;
    std::size_t count;
    std::size_t filling;
    std::vector<std::uint8_t> source;
};

/// Shifts successive bytes to successive byte positions of a wide character.
template <class Char>
std::vector<Char> sourceOf(const Input& input)
{
    std::vector<Char> text;
    for (const std::uint32_t byte : input.source)
        text.push_back(static_cast<Char>(byte << 8 * (text.size() % sizeof(Char))));
    text.push_back(Char());
    return text;
}

template <class Char>
std::vector<Char> destinationOf(const Input& input)
{
    std::vector<Char> text(input.size, Char('d'));
    if (input.filling < input.size)
        text[input.filling] = Char();
    return text;
}

template <class Family>
bool agrees(const Input& input)
{
    using Char = typename Family::Char;
    static Differential<Family> functions;
    const std::vector<Char> src = sourceOf<Char>(input);
    const std::vector<Char> dst = destinationOf<Char>(input);
    switch (input.function) {
    case 0:
        return functions.copy(dst, src, input.size);
    case 1:
        return functions.append(dst, src, input.size);
    case 2:
        return functions.copyPadded(dst, src, input.count, input.size);
    case 3:
        return functions.appendCounted(dst, src, input.count, input.size);
    case 4:
        return functions.verify(dst, input.size);
    default:
        return functions.format(dst, src, input.size);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    const Input input = {data[0] / 2U % 6U,
                         data[1],
                         data[2] == 255 ? SIZE_MAX : data[2],
                         data[3],
                         {data + 4, data + size}};
    FUZZ_REQUIRE(data[0] % 2 == 0 ? agrees<Narrow>(input) : agrees<Wide>(input));
    return 0;
}
