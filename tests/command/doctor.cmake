# Tests of `dmpclaim doctor`: its parts, and the command on a made-up machine with the simulated
# tools.
foreach(part device_examination finding_output kernel_maps tool_examination)
    add_command_test(doctor/${part}_test)
endforeach()
