# Tests of `dmpclaim active`: its parts, and the command with the simulated tools. A `sleep` that
# returns at once is loaded into the command.
add_library(quick_sleep MODULE ${PROJECT_SOURCE_DIR}/tests/support/quick_sleep.cpp)
set_target_properties(quick_sleep PROPERTIES CXX_VISIBILITY_PRESET default)
target_compile_options(quick_sleep PRIVATE -fno-sanitize=all)
target_link_options(quick_sleep PRIVATE -fno-sanitize=all)

foreach(part active_lookup dry_run end_tools end_tools_attack interrupt lookup_pool lookup_pool_memory progress_text retry_policy stop_request
        terminal_line timeline tool_name trace_event)
    add_command_test(${part}_test)
endforeach()

foreach(subject faults interrupt jobs names output)
    add_command_test(active_${subject}_test)
    target_link_libraries(command_active_${subject}_test PRIVATE simulated_tools)
    target_compile_definitions(command_active_${subject}_test PRIVATE
        QUICK_SLEEP="$<TARGET_FILE:quick_sleep>")
    add_dependencies(command_active_${subject}_test quick_sleep)
endforeach()
