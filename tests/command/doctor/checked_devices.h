#ifndef TESTS_COMMAND_DOCTOR_CHECKED_DEVICES_H
#define TESTS_COMMAND_DOCTOR_CHECKED_DEVICES_H

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "doctor/device_checks.h"
#include "fake_machine.h"

/// What doctor finds on a made-up machine without asking tools.
class DeviceChecks : public testing::Test {
protected:
    /// "SEVERITY DEVICE: TEXT" for each finding.
    std::vector<std::string> all() const { return all(machine.readings()); }

    /// The only finding about the device, besides one about its name alone.
    command::Finding findingFor(const std::string& device) const
    {
        std::vector<command::Finding> found;
        const command::Inventory kernel(machine.roots());
        const auto take = [&](const command::Finding& finding) {
            if (finding.device == device && finding.code != command::Code::ambiguousNames)
                found.push_back(finding);
        };
        command::checkDevices(kernel, machine.drivers(), machine.readings(), given, take);
        EXPECT_EQ(found.size(), 1U) << device;
        return found.empty() ? command::Finding{command::Code::toolReady, "", ""} : found.front();
    }

    std::string remedyFor(const std::string& device) const { return findingFor(device).remedy; }

    std::vector<std::string> all(const std::vector<command::DeviceReading>& readings) const
    {
        std::vector<std::string> lines;
        const command::Inventory kernel(machine.roots());
        const auto take = [&](const command::Finding& finding) {
            lines.push_back(std::string(command::severityName(finding.severity())) + ' ' +
                            finding.device + ": " + finding.text);
            const bool mustAct = finding.severity() != command::Severity::ok;
            EXPECT_EQ(finding.advice.empty(), !mustAct) << lines.back();
        };
        command::checkDevices(kernel, machine.drivers(), readings, given, take);
        return lines;
    }

    /// The findings about single devices, without those about their names alone.
    std::vector<std::string> findings() const
    {
        std::vector<std::string> lines;
        for (const std::string& line : all()) {
            if (line.rfind("ok ", 0) != 0 && line.find("other tools") == std::string::npos)
                lines.push_back(line);
        }
        return lines;
    }

    FakeMachine machine;
    std::vector<std::string> given;
};

#endif
