#include "names/kernel_columns.h"

#include <gmock/gmock.h>

#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

/// The field of a column for a path of the machine.
Field fieldOf(std::string_view column, const MadeUpMachine& made, const std::string& path)
{
    CDmpClaimManager manager;
    const Machine machine(made.roots());
    const DeviceAnswer answer = deviceAnswer(manager, path, DeviceLookup(machine));
    for (const Column<DeviceAnswer>& candidate : kernelColumns()) {
        if (candidate.heading.name == column)
            return candidate.value(answer);
    }
    ADD_FAILURE() << "there is no column " << column;
    return {};
}

TEST(KernelColumns, AStateThatIsNotTheUsualOneLooksBad)
{
    MadeUpMachine made;
    made.addDisk("sda", "8:0", "1:0:0:0");
    EXPECT_EQ(std::get<Mark>(fieldOf("STATE", made, "/dev/sda")).tone, Tone::good);
    made.set("sda", "device/state", "offline");
    const Mark state = std::get<Mark>(fieldOf("STATE", made, "/dev/sda"));
    EXPECT_EQ(state.text, "offline");
    EXPECT_EQ(state.tone, Tone::bad);
}

TEST(KernelColumns, AreNoneWithoutADevice)
{
    const MadeUpMachine made;
    for (const char* column : {"KIND", "KNAME", "MAJMIN", "SIZE", "PARENT", "MEMBEROF", "MEMBERS",
                               "WWID", "HCTL", "STATE", "LINKS", "AGREES"})
        EXPECT_TRUE(std::holds_alternative<std::monostate>(fieldOf(column, made, "/dev/sda")))
            << column;
    EXPECT_FALSE(std::get<bool>(fieldOf("EXISTS", made, "/dev/sda")));
}

} // namespace
