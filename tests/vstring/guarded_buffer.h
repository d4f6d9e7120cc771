#ifndef GUARDED_BUFFER_H
#define GUARDED_BUFFER_H

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <vector>

/// Characters that end where an inaccessible page begins: one access behind them ends the program.
template <class Char>
class GuardedBuffer {
public:
    GuardedBuffer()
    {
        require(m_memory != MAP_FAILED);
        require(mprotect(m_memory + room, guard, PROT_NONE) == 0);
    }

    ~GuardedBuffer() { munmap(m_memory, room + guard); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    /// Puts `text` at the end and a margin in front of it. Returns where it begins.
    Char* place(const std::vector<Char>& text)
    {
        if ((margin + text.size()) * sizeof(Char) > room)
            throw std::length_error("text longer than the buffer");
        require(mprotect(m_memory, room, PROT_READ | PROT_WRITE) == 0);
        Char* begin = end() - text.size();
        std::fill(begin - margin, begin, marginCharacter);
        std::copy(text.begin(), text.end(), begin);
        return begin;
    }

    /// Lets no write pass until the next text is placed.
    void makeReadOnly() { require(mprotect(m_memory, room, PROT_READ) == 0); }

    /// Whether the buffer ends in `text`, and the margin in front of it is as it was.
    bool holds(const std::vector<Char>& text) const
    {
        const Char* begin = end() - text.size();
        return std::equal(text.begin(), text.end(), begin) &&
               std::count(begin - margin, begin, marginCharacter) == margin;
    }

private:
    static constexpr std::size_t room = 65536;
    static constexpr std::size_t guard = 4096;
    static constexpr std::ptrdiff_t margin = 16;
    static constexpr Char marginCharacter = 0x5A;

    static void require(bool success)
    {
        if (!success)
            throw std::system_error(errno, std::generic_category());
    }

    Char* end() const { return reinterpret_cast<Char*>(m_memory + room); }

    char* m_memory = static_cast<char*>(
        mmap(nullptr, room + guard, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
};

#endif
