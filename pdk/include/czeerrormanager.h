#ifndef CZEERRORMANAGER_H
#define CZEERRORMANAGER_H

#include <cstdint>
#include <map>
#include <memory>

#include "pdk/include/czerefcount.h"
#include "pdk/include/czesmartptr.h"

namespace koze_pdk_4_4 {

/// A message of the framework's catalogue, shared by handles.
class CZE_EXPORT CZeMessage : public virtual CZeRefCount {};

/// Handle to a message.
using CZeMessageHandle = CZeSmartPtr<CZeMessage, CZeNullAllocator<CZeMessage>>;

/// The framework's error manager: messages by number, and a buffer for their text. The framework
/// fills both; the manager's destructor frees the buffer and releases every message.
class CZE_EXPORT CZeErrorManager : public virtual CZeRefCount {
protected:
    std::map<std::uint32_t, CZeMessageHandle> m_messages{}; ///< By number.
    std::unique_ptr<char[]> m_buffer{};                     ///< For their text.
};

} // namespace koze_pdk_4_4

#endif
