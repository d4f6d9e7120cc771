#ifndef ZECMN_DESCRIPTOR_H
#define ZECMN_DESCRIPTOR_H

#include <string>

#include "pdk/descriptor.h"

namespace koze_pdk_4_4::runner {

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

// Descriptors opened here are close-on-exec and above 2. All functions throw std::system_error on
// failure.

Pipe openPipe();

/// Opens what a program reads as stdin: `text`, or /dev/null when it is empty. A memfd, not a pipe:
/// a program that does not read it raises no SIGPIPE in the host.
Descriptor openInput(const std::string& text);

} // namespace koze_pdk_4_4::runner

#endif
