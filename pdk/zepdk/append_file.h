#ifndef ZEPDK_APPEND_FILE_H
#define ZEPDK_APPEND_FILE_H

#include <string>

#include "pdk/descriptor.h"

/// Opens `path` for appending, with the promises of CZeTraceFileSink. The kernel refuses most of
/// what this refuses when its fs.protected_* settings are on; a library cannot rely on them.
koze_pdk_4_4::Descriptor openForAppending(const std::string& path);

#endif
