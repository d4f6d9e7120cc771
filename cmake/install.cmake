# What goes to a host's machine: the library with its headers, its CMake package and its pkg-config
# file, and the framework's stand-ins where they are built.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/dmpclaim)
file(RELATIVE_PATH relative_prefix
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})

set(installed_libraries dmpclaim)
if(NOT DMPCLAIM_FRAMEWORK_DIR)
    list(APPEND installed_libraries zepdk zecmn zeutil)
endif()
set_target_properties(${installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ${installed_libraries} EXPORT dmpclaimTargets)

foreach(header ${library_headers})
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dmpclaim/${folder})
endforeach()
install(DIRECTORY pdk/include DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dmpclaim/pdk)

configure_package_config_file(cmake/dmpclaimConfig.cmake.in dmpclaimConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(dmpclaimConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/dmpclaim.pc.in dmpclaim.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/dmpclaimConfig.cmake
              ${PROJECT_BINARY_DIR}/dmpclaimConfigVersion.cmake
        DESTINATION ${package_dir})
install(FILES ${PROJECT_BINARY_DIR}/dmpclaim.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(EXPORT dmpclaimTargets NAMESPACE dmpclaim:: DESTINATION ${package_dir})
