#ifndef BOUNDED_MODEL_H
#define BOUNDED_MODEL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// The bounded string functions once more, a character at a time and with every index checked.
namespace model {

/// A source string that remembers how far it was read.
template <class Char>
class Source {
public:
    explicit Source(std::vector<Char> text) : m_text(std::move(text)) {}

    Char at(std::size_t index)
    {
        m_read = std::max(m_read, index + 1);
        return m_text.at(index);
    }

    /// The characters up to the last one that was read.
    std::vector<Char> read() const
    {
        return std::vector<Char>(m_text.data(), m_text.data() + m_read);
    }

private:
    std::vector<Char> m_text;
    std::size_t m_read = 0;
};

template <class Char>
std::size_t copyTo(std::size_t begin, std::vector<Char>& dst, Source<Char>& src, std::size_t size)
{
    std::size_t copied = 0;
    while (copied < size - 1 && src.at(copied) != 0) {
        dst.at(begin + copied) = src.at(copied);
        ++copied;
    }
    dst.at(begin + copied) = 0;
    return copied;
}

template <class Char>
std::size_t copy(std::vector<Char>& dst, Source<Char>& src, std::size_t size)
{
    return size == 0 ? 0 : copyTo(0, dst, src, size);
}

/// Returns the place of the terminator, `size` when there is none before.
template <class Char>
std::size_t lengthOf(const std::vector<Char>& text, std::size_t size)
{
    std::size_t length = 0;
    while (length < size && text.at(length) != 0)
        ++length;
    return length;
}

template <class Char>
std::size_t append(std::vector<Char>& dst, Source<Char>& src, std::size_t size)
{
    const std::size_t length = lengthOf(dst, size);
    return size - length < 2 ? 0 : copyTo(length, dst, src, size - length);
}

template <class Char>
std::size_t copyPadded(std::vector<Char>& dst, Source<Char>& src, std::size_t count,
                       std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t limit = std::min(count, size - 1);
    bool ended = false;
    for (std::size_t i = 0; i < limit; ++i) {
        ended = ended || src.at(i) == 0;
        dst.at(i) = ended ? Char() : src.at(i);
    }
    dst.at(limit) = 0;
    return limit;
}

template <class Char>
std::size_t appendCounted(std::vector<Char>& dst, Source<Char>& src, std::size_t count,
                          std::size_t size)
{
    const std::size_t length = lengthOf(dst, size);
    const bool wraps = count > SIZE_MAX - length - 1;
    return append(dst, src, wraps ? size : std::min(length + count + 1, size));
}

/// Returns the result and what is stored as the length.
template <class Char>
std::pair<std::int32_t, std::size_t> verify(const std::vector<Char>& buf, std::size_t size)
{
    const std::size_t length = lengthOf(buf, size);
    if (length == size)
        return {-1, 0};
    return {0, length};
}

/// Formats the source alone. A text that is cut fails for wide characters only.
template <class Char>
std::int32_t format(std::vector<Char>& dst, Source<Char>& src, std::size_t size)
{
    if (size == 0)
        return -1;
    std::size_t length = 0;
    while (src.at(length) != 0)
        ++length;
    const std::size_t copied = copyTo(0, dst, src, size);
    return copied == length || sizeof(Char) == 1 ? static_cast<std::int32_t>(copied) : -1;
}

} // namespace model

#endif
