#ifndef CZESMARTPTR_H
#define CZESMARTPTR_H

#include <cstdint>

#include "pdk/include/czeexport.h"

namespace koze_pdk_4_4 {

/// Allocators name how the framework creates an object. They are part of a handle's type only:
/// a handle always destroys its object through the object's virtual destructor.
template <class T>
class CZeContextSingletonAllocator;
template <class T>
class CZeNullAllocator;

/// Handle to a reference-counted object made with `new`: one pointer, null when the handle is
/// empty. The object is destroyed with its last handle.
///
/// T derives from CZeRefCount. Not safe between threads: the count is a plain integer.
template <class T, class Allocator>
class CZE_EXPORT CZeSmartPtr {
public:
    CZeSmartPtr() = default;

    /// Counts one reference to `pointee`; null makes an empty handle.
    CZeSmartPtr(T* pointee) : m_pointee(pointee) { acquire(); }

    /// Counts one reference to the object of `other`, which may be empty.
    CZeSmartPtr(const CZeSmartPtr& other) : m_pointee(other.m_pointee) { acquire(); }

    ~CZeSmartPtr() { release(); }

    /// Releases the old object before it counts the new one. Assigning a handle to itself does
    /// nothing.
    CZeSmartPtr& operator=(const CZeSmartPtr& other)
    {
        if (this != &other) {
            release();
            m_pointee = other.m_pointee;
            acquire();
        }
        return *this;
    }

    /// Gives the reference up and empties the handle. Returns the count that is left, or -1 when
    /// the handle was empty already. The last reference destroys the object, with its count back
    /// at 1, so that a handle made during the destruction cannot reach 0 a second time. This handle
    /// is emptied last: the object's destructor may copy it, but not release or assign it.
    std::int32_t release()
    {
        if (m_pointee == nullptr)
            return -1;
        const std::int32_t count = m_pointee->decrement();
        if (count == 0) {
            m_pointee->increment();
            delete m_pointee;
        }
        m_pointee = nullptr;
        return count;
    }

    /// The object, still owned by its handles; null when the handle is empty.
    T* get() const { return m_pointee; }

    /// The object. REQUIRES: the handle is not empty.
    T* operator->() const { return m_pointee; }

    /// Whether there is an object.
    explicit operator bool() const { return m_pointee != nullptr; }

private:
    void acquire()
    {
        if (m_pointee != nullptr)
            m_pointee->increment();
    }

    T* m_pointee = nullptr;
};

} // namespace koze_pdk_4_4

#endif
