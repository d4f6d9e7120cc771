#include "tests/command/doctor/doctor_command.h"

namespace {

/// Mounts the machine's trees over the real ones. Programs also need /dev/null there.
constexpr char layOver[] = R"(set -e
touch "$1/null" && mount --bind /dev/null "$1/null"
mount --bind "$3" /proc/devices
mount --rbind "$1" /dev
mount --rbind "$2" /sys
shift 3
exec "$@")";

} // namespace

std::vector<std::string> Doctor::doctor(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> command{"sh",
                                     "-c",
                                     layOver,
                                     "sh",
                                     machine.roots().dev,
                                     machine.roots().sysfs,
                                     machine.drivers(),
                                     "env",
                                     "--default-signal=INT,TERM,HUP,QUIT,PIPE",
                                     "LD_PRELOAD=" FAKE_NODES,
                                     "ASAN_OPTIONS=" + sanitizerOptions,
                                     DMPCLAIM_COMMAND,
                                     "doctor"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return inNamespace(command);
}

Result Doctor::run(const std::vector<std::string>& arguments, std::string_view input) const
{
    return Process(doctor(arguments)).finish(input);
}

Json Doctor::report(std::vector<std::string> arguments) const
{
    arguments.emplace_back("-J");
    const Result ended = run(arguments);
    EXPECT_EQ(ended.errors, "");
    return Json::parse(ended.output);
}
