#ifndef TESTS_SUPPORT_ALLOCATION_OPERATORS_H
#define TESTS_SUPPORT_ALLOCATION_OPERATORS_H

// The other forms of operator new and operator delete, for a test program that replaces these two.
// They call the two, because a sanitizer's own forms would not match them. Include this in the one
// source file that defines the two.

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
