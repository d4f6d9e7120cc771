# What goes to a host's machine: the library with its headers, its CMake package and its pkg-config
# file, and the framework's stand-ins where they are built.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/dmpclaim)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/dmpclaim)
file(RELATIVE_PATH relative_prefix
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})

set(installed_libraries dmpclaim)
if(DMPCLAIM_FRAMEWORK_DIR)
    get_target_property(framework_folder dmpclaim::zepdk IMPORTED_LOCATION)
    cmake_path(GET framework_folder PARENT_PATH framework_folder)
    set(pc_framework_folder ${framework_folder})
    # Adds the framework's folder to CMAKE_INSTALL_RPATH, unless the loader looks there anyway, or it
    # lies in the source or build tree.
    set_target_properties(dmpclaim PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
else()
    set(framework_folder)
    set(pc_framework_folder "\${libdir}")
    list(APPEND installed_libraries zepdk zecmn zeutil)
    set_target_properties(${installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
# An RPATH that installation replaces is padded with empty entries. For those the loader searches
# the current folder.
set_target_properties(${installed_libraries} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)

# Before the first file is installed.
install(CODE "
    set(library_folder \"${CMAKE_INSTALL_LIBDIR}\")
    set(framework_libraries \"$<TARGET_FILE_NAME:dmpclaim::zepdk>\"
        \"$<TARGET_FILE_NAME:dmpclaim::zecmn>\" \"$<TARGET_FILE_NAME:dmpclaim::zeutil>\")
    set(sink_header \"${header_dir}/pdk/include/czetracesink.h\")
    set(stand_in_mark \"${stand_in_mark}\")
    set(framework_folder \"${framework_folder}\")")
install(SCRIPT cmake/check_destination.cmake)

install(TARGETS ${installed_libraries} EXPORT dmpclaimTargets)

foreach(header ${library_headers})
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${header_dir}/${folder})
endforeach()
install(DIRECTORY pdk/include DESTINATION ${header_dir}/pdk)
if(NOT DMPCLAIM_FRAMEWORK_DIR)
    install(DIRECTORY pdk/stand_ins/pdk DESTINATION ${header_dir})
endif()

configure_package_config_file(cmake/dmpclaimConfig.cmake.in dmpclaimConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(dmpclaimConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/dmpclaim.pc.in dmpclaim.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/dmpclaimConfig.cmake
              ${PROJECT_BINARY_DIR}/dmpclaimConfigVersion.cmake
              cmake/dmpclaimFramework.cmake
        DESTINATION ${package_dir})
install(FILES ${PROJECT_BINARY_DIR}/dmpclaim.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(EXPORT dmpclaimTargets NAMESPACE dmpclaim:: DESTINATION ${package_dir})
