#ifndef CLAIM_MODULE_TRACE_H
#define CLAIM_MODULE_TRACE_H

#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "tests/support/recording_log.h"
#include "tests/support/traced.h"

/// Base of the tests of a claim module's trace lines.
template <class ClaimModule>
class ClaimModuleTrace : public testing::Test {
protected:
    /// `className` and `file` are as the lines show them.
    ClaimModuleTrace(std::string className, std::string file)
        : m_className(std::move(className)), m_file(std::move(file))
    {
        m_module.registerTraceLog(m_log.handle());
    }

    /// The lines of `function`, which tells of a disk, its partition and the partition's number.
    TraceLines conversion(const std::string& function, const std::string& disk,
                          const std::string& partition, const std::string& number) const
    {
        return Traced(function, m_file,
                      Line{3, "INFO: " + m_className + "::" + function + " device [" + disk +
                                  "] partition[" + partition + "] partnum[" + number + "]"});
    }

    TraceLines removal(const std::string& disk, const std::string& partition,
                       const std::string& number) const
    {
        return conversion("removePartitionSuffix", disk, partition, number);
    }

    RecordingLog m_log;
    ClaimModule m_module;

private:
    const std::string m_className;
    const std::string m_file;
};

#endif
