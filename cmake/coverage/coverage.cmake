# Counts in all that is compiled from here on. Tests count, too: they are what compiles many inline
# functions.
set(coverage_folder ${PROJECT_BINARY_DIR}/counters)
file(MAKE_DIRECTORY ${coverage_folder})
# Tests run programs as other accounts.
file(CHMOD ${coverage_folder} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
     GROUP_READ GROUP_WRITE GROUP_EXECUTE WORLD_READ WORLD_WRITE WORLD_EXECUTE)

add_library(coverage_counters STATIC ${CMAKE_CURRENT_LIST_DIR}/counters.c)
set_target_properties(coverage_counters PROPERTIES POSITION_INDEPENDENT_CODE ON C_EXTENSIONS ON)
target_compile_definitions(coverage_counters PRIVATE COVERAGE_FOLDER="${coverage_folder}")
# Reserved names are those of the profile runtime.
target_compile_options(coverage_counters PRIVATE -Wno-reserved-identifier -Wno-sign-conversion)

# Atomic: all processes of a program count in the same memory, and must not undo each other's bits.
add_compile_options(-fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping -fcoverage-mcdc)
link_libraries($<BUILD_INTERFACE:coverage_counters>)
add_link_options(-fprofile-instr-generate -Wl,-T,${CMAKE_CURRENT_LIST_DIR}/counters.ld)
# The C++ library's own templates, which clang 19 does not take for a system's.
add_compile_options(-Wno-deprecated-declarations)
