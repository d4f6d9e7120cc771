# Refuses to mix stand-ins and a framework's own libraries in one folder: hosts would get some of
# each. cmake/install.cmake sets the variables; a destination lies under DESTDIR.
cmake_path(ABSOLUTE_PATH library_folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
cmake_path(ABSOLUTE_PATH sink_header BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
set(sink_header "$ENV{DESTDIR}${sink_header}")

set(stand_ins)
set(others)
if(EXISTS "${sink_header}" OR IS_SYMLINK "${sink_header}")
    list(APPEND stand_ins "${sink_header}")
endif()
foreach(library IN LISTS framework_libraries)
    set(file "$ENV{DESTDIR}${library_folder}/${library}")
    set(marks)
    if(EXISTS "${file}")
        file(STRINGS "${file}" marks REGEX "${stand_in_mark}" LIMIT_COUNT 1)
    elseif(NOT IS_SYMLINK "${file}") # under DESTDIR an absolute link leads nowhere
        continue()
    endif()
    if(marks)
        list(APPEND stand_ins "${file}")
    else()
        list(APPEND others "${file}")
    endif()
endforeach()
list(JOIN stand_ins " " stand_ins)
list(JOIN others " " others)

if(framework_folder AND stand_ins)
    message(FATAL_ERROR
        "Nothing was installed. An earlier installation left stand-ins for the framework here, "
        "which hosts would use instead of the framework in ${framework_folder}. "
        "Remove them, or choose another prefix: ${stand_ins}")
elseif(others AND NOT framework_folder)
    message(FATAL_ERROR
        "Nothing was installed. Stand-ins for the framework would replace a framework's own "
        "libraries. Configure with -DDMPCLAIM_FRAMEWORK_DIR=${library_folder} to use these, or "
        "choose another prefix: ${others}")
endif()
