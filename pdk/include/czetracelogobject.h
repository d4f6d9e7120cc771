#ifndef CZETRACELOGOBJECT_H
#define CZETRACELOGOBJECT_H

#include "pdk/include/czeexport.h"
#include "pdk/include/czerefcount.h"
#include "pdk/include/czesmartptr.h"

namespace koze_pdk_4_4 {

/// The object of the framework that a trace log holds. What it does is the framework's business:
/// that of the stand-ins is a sink, which takes the log's lines.
class CZE_EXPORT CZeTraceLogObject : public virtual CZeRefCount {};

/// Handle to such an object; empty in a log that has none.
using CZeTraceLogObjectHandle = CZeSmartPtr<CZeTraceLogObject, CZeNullAllocator<CZeTraceLogObject>>;

} // namespace koze_pdk_4_4

#endif
