#include "names/kernel_columns.h"

#include <gmock/gmock.h>

#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

bool isNone(const Field& field)
{
    return std::holds_alternative<std::monostate>(field);
}

Field fieldIn(std::string_view column, const DeviceAnswer& answer)
{
    for (const Column<DeviceAnswer>& candidate : kernelColumns()) {
        if (candidate.heading.name == column)
            return candidate.value(answer);
    }
    ADD_FAILURE() << "there is no column " << column;
    return {};
}

/// The field of a column for a path of the machine.
Field fieldOf(std::string_view column, const MadeUpMachine& made, const std::string& path)
{
    CDmpClaimManager manager;
    const Machine machine(made.roots());
    return fieldIn(column, deviceAnswer(manager, path, DeviceLookup(machine)));
}

TEST(KernelColumns, AStateThatIsNotTheUsualOneLooksBad)
{
    MadeUpMachine made;
    made.addDisk("sda", "8:0", "1:0:0:0");
    EXPECT_EQ(std::get<Mark>(fieldOf("STATE", made, "/dev/sda")).tone, Tone::good);
    made.set("sda", "device/state", "live");
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
        EXPECT_TRUE(isNone(fieldOf(column, made, "/dev/sda"))) << column;
    EXPECT_FALSE(std::get<bool>(fieldOf("EXISTS", made, "/dev/sda")));
}

TEST(KernelColumns, DoNotTellWithoutAMachineWhetherThePathExists)
{
    CDmpClaimManager manager;
    EXPECT_TRUE(isNone(fieldIn("EXISTS", deviceAnswer(manager, "/dev/sda"))));
}

} // namespace
