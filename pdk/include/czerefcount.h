#ifndef CZEREFCOUNT_H
#define CZEREFCOUNT_H

#include <cstdint>

#include "pdk/include/czeexport.h"

namespace koze_pdk_4_4 {

/// Reference count of a framework object: the virtual base of every class that handles point to.
///
/// The count is a plain integer. Neither the count nor the handles that change it may be shared
/// between threads without outside locking.
class CZE_EXPORT CZeRefCount {
public:
    CZeRefCount() = default;
    CZeRefCount(const CZeRefCount&) = delete;
    CZeRefCount& operator=(const CZeRefCount&) = delete;
    virtual ~CZeRefCount() = default;

    /// Adds one reference; returns the new count.
    virtual std::int32_t increment() { return ++m_count; }

    /// Takes one reference away; returns the new count. Destroys nothing: handles do that.
    virtual std::int32_t decrement() { return --m_count; }

    /// Returns the number of references; 0 for an object that no handle has held yet.
    virtual std::int32_t getCount() { return m_count; }

private:
    std::int32_t m_count = 0;
};

} // namespace koze_pdk_4_4

#endif
