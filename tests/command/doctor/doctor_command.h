#ifndef TESTS_COMMAND_DOCTOR_DOCTOR_COMMAND_H
#define TESTS_COMMAND_DOCTOR_DOCTOR_COMMAND_H

#include <string>
#include <string_view>
#include <vector>

#include "fake_machine.h"
#include "tests/command/namespaced_tools.h"

/// `dmpclaim doctor` as a process, on a made-up machine with the simulated tools.
class Doctor : public NamespacedTools {
protected:
    std::vector<std::string> doctor(const std::vector<std::string>& arguments) const;
    Result run(const std::vector<std::string>& arguments = {}, std::string_view input = {}) const;
    Json report(std::vector<std::string> arguments = {}) const;

    FakeMachine machine;
    std::string sanitizerOptions = "verify_asan_link_order=0";
};

#endif
