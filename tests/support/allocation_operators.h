#ifndef ALLOCATION_OPERATORS_H
#define ALLOCATION_OPERATORS_H

// For the one source file of a test program that replaces operator new and operator delete: their
// other forms, which a sanitizer's own ones would not match. All of them end in the two that the
// file defines.

#include <new>

// NOLINTBEGIN(misc-definitions-in-headers)
void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept
{
    return operator new(size, tag);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    operator delete(block);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    operator delete(block);
}
// NOLINTEND(misc-definitions-in-headers)

#endif
