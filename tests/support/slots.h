#ifndef TESTS_SUPPORT_SLOTS_H
#define TESTS_SUPPORT_SLOTS_H

#include <cstddef>
#include <cstring>

/// The virtual operation in slot `number` of `object`, counted from 0, as a function that takes the
/// object first. Slots are a contract: binaries that were built apart call each other through them.
template <class Function>
Function* slot(const void* object, std::size_t number)
{
    Function* const* slots = nullptr;
    std::memcpy(&slots, object, sizeof slots);
    return slots[number];
}

/// The bytes of `object` from `offset` on as a value of type Field.
template <class Field>
Field fieldAt(const void* object, std::size_t offset)
{
    return *reinterpret_cast<const Field*>(static_cast<const char*>(object) + offset);
}

#endif
