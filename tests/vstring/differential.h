#ifndef DIFFERENTIAL_H
#define DIFFERENTIAL_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "bounded_model.h"
#include "guarded_buffer.h"

/// Runs the functions of a family and their models side by side.
///
/// Each member takes what the destination holds, which is all of its buffer, and a terminated
/// source. Returns whether result and buffers agree. Both buffers end at an inaccessible page, the
/// source behind the last character that the model read.
template <class Family>
class Differential {
public:
    using Char = typename Family::Char;
    using Text = std::vector<Char>;

    bool copy(const Text& dst, const Text& src, std::size_t size)
    {
        return agree(
            dst, src, [=](Char* to, const Char* from) { return Family::copy(to, from, size); },
            [=](auto& to, auto& from) { return model::copy(to, from, size); });
    }

    bool append(const Text& dst, const Text& src, std::size_t size)
    {
        return agree(
            dst, src, [=](Char* to, const Char* from) { return Family::append(to, from, size); },
            [=](auto& to, auto& from) { return model::append(to, from, size); });
    }

    bool copyPadded(const Text& dst, const Text& src, std::size_t count, std::size_t size)
    {
        return agree(
            dst, src,
            [=](Char* to, const Char* from) { return Family::copyPadded(to, from, count, size); },
            [=](auto& to, auto& from) { return model::copyPadded(to, from, count, size); });
    }

    bool appendCounted(const Text& dst, const Text& src, std::size_t count, std::size_t size)
    {
        return agree(
            dst, src,
            [=](Char* to, const Char* from) {
                return Family::appendCounted(to, from, count, size);
            },
            [=](auto& to, auto& from) { return model::appendCounted(to, from, count, size); });
    }

    bool verify(const Text& buf, std::size_t size)
    {
        return agree(
            buf, {},
            [=](Char* text, const Char*) {
                std::size_t length = 12345;
                const std::int32_t result = Family::verify(text, size, &length);
                return std::pair(result, length);
            },
            [=](auto& text, auto&) { return model::verify(text, size); });
    }

    bool format(const Text& dst, const Text& src, std::size_t size)
    {
        return agree(
            dst, src, [=](Char* to, const Char* from) { return Family::format(to, size, from); },
            [=](auto& to, auto& from) { return model::format(to, from, size); });
    }

private:
    template <class Ours, class Model>
    bool agree(const Text& dst, const Text& src, Ours ours, Model model)
    {
        Text expected = dst;
        model::Source<Char> source(src);
        const auto expectedResult = model(expected, source);
        const Char* from = m_src.place(source.read());
        const auto result = ours(m_dst.place(dst), from);
        return result == expectedResult && m_dst.holds(expected) && m_src.holds(source.read());
    }

    GuardedBuffer<Char> m_dst;
    GuardedBuffer<Char> m_src;
};

#endif
