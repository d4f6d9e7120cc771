# What is built, optimised and hardened by default, and what cannot be built.

# The components of an installation.
set(all_components runtime development tools framework)
set(DMPCLAIM_COMPONENTS "${all_components}" CACHE STRING
    "What is installed: runtime, development, tools (the command), framework (stand-ins)")
foreach(component IN LISTS DMPCLAIM_COMPONENTS)
    if(NOT component IN_LIST all_components)
        message(FATAL_ERROR "DMPCLAIM_COMPONENTS names '${component}', which is no component. "
                            "The components are: ${all_components}")
    endif()
endforeach()

if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
    message(FATAL_ERROR "dmpclaim is for 64-bit Linux only: fields, slots and numbers of its "
                        "interface have the sizes of 64-bit systems.")
endif()
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
    message(FATAL_ERROR "dmpclaim is a shared library only: the host, its modules and the "
                        "framework use one copy of its classes. Configure without "
                        "BUILD_SHARED_LIBS=OFF.")
endif()

# `cmake -B build` optimises. A distribution says CMAKE_BUILD_TYPE=None, or brings an -O of its own.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES
   AND NOT CMAKE_CXX_FLAGS MATCHES "(^| )-O")
    message(STATUS "No CMAKE_BUILD_TYPE: building as Release, which optimises. "
                   "None leaves all flags to CXXFLAGS.")
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

# What ships is hardened. A builder's own flags come behind these, and win.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT DMPCLAIM_SANITIZE)
    set(hardening -fstack-protector-strong -fstack-clash-protection)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
        list(APPEND hardening -fcf-protection)
    endif()
    if(NOT "${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS}" MATCHES "_FORTIFY_SOURCE")
        list(APPEND hardening -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    list(JOIN hardening " " hardening)
    string(PREPEND CMAKE_C_FLAGS "${hardening} ")
    string(PREPEND CMAKE_CXX_FLAGS "${hardening} ")
    foreach(kind EXE SHARED)
        string(PREPEND CMAKE_${kind}_LINKER_FLAGS "-Wl,-z,relro,-z,now,-z,noexecstack ")
    endforeach()
    include(CheckPIESupported)
    check_pie_supported()
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
