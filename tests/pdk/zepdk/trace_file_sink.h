#ifndef TRACE_FILE_SINK_H
#define TRACE_FILE_SINK_H

#include <gtest/gtest.h>

#include <string>

#include "tests/support/temporary_folder.h"

/// Base of the tests of sinks that write to a file.
class TraceFileSink : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string path = folder.file("trace.log");
};

#endif
