# What goes to a host's machine, by component: the library (runtime); its headers, CMake package and
# pkg-config file (development); the framework's stand-ins where they are built (framework). The
# folders of the command add what it is used with (tools).
include(CMakePackageConfigHelpers)

# in_COMPONENT: the end of an install rule. A rule of a component that is left out is carried out
# only when `cmake --install --component` names that component.
foreach(component IN LISTS all_components)
    set(in_${component} COMPONENT ${component})
    if(NOT component IN_LIST DMPCLAIM_COMPONENTS)
        list(APPEND in_${component} EXCLUDE_FROM_ALL)
    endif()
endforeach()

# install_configured(FILE DESTINATION RULE...): configures FILE.in, and again when it is installed,
# because only then `prefix` is known.
function(install_configured file destination)
    cmake_path(GET file FILENAME name)
    set(template ${CMAKE_CURRENT_BINARY_DIR}/${name}.in)
    set(configured ${CMAKE_CURRENT_BINARY_DIR}/${name})
    set(prefix "@prefix@")
    configure_file(${file}.in ${template} @ONLY)
    set(prefix ${CMAKE_INSTALL_PREFIX})
    configure_file(${template} ${configured} @ONLY)
    install(CODE "
        cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
        configure_file(\"${template}\" \"${configured}\" @ONLY)" ${ARGN})
    install(FILES ${configured} DESTINATION ${destination} ${ARGN})
endfunction()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/dmpclaim)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/dmpclaim)
set(header_names FILES_MATCHING REGEX "/[a-z_]+\\.h$") # no copies and locks of editors

set(stand_ins)
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
    set(stand_ins zepdk zecmn zeutil)
    set_target_properties(dmpclaim ${stand_ins} PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
# An RPATH that installation replaces is padded with empty entries. For those the loader searches
# the current folder.
set_target_properties(dmpclaim ${stand_ins} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)

# Before the first file is installed. Without stand-ins and without a framework nothing mixes.
if(framework_folder OR "framework" IN_LIST DMPCLAIM_COMPONENTS)
    install(CODE "
        set(library_folder \"${CMAKE_INSTALL_LIBDIR}\")
        set(framework_libraries \"$<TARGET_FILE_NAME:dmpclaim::zepdk>\"
            \"$<TARGET_FILE_NAME:dmpclaim::zecmn>\" \"$<TARGET_FILE_NAME:dmpclaim::zeutil>\")
        set(sink_header \"${header_dir}/pdk/include/czetracesink.h\")
        set(stand_in_mark \"${stand_in_mark}\")
        set(framework_folder \"${framework_folder}\")" ALL_COMPONENTS)
    install(SCRIPT cmake/check_destination.cmake ALL_COMPONENTS)
endif()

install(TARGETS dmpclaim EXPORT dmpclaimTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP ${in_runtime})
install(TARGETS dmpclaim
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_ONLY ${in_development})
foreach(header ${library_headers})
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${header_dir}/${folder} ${in_development})
endforeach()
install(DIRECTORY pdk/include DESTINATION ${header_dir}/pdk ${in_development} ${header_names})

configure_package_config_file(cmake/dmpclaimConfig.cmake.in dmpclaimConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(dmpclaimConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/dmpclaimConfig.cmake
              ${PROJECT_BINARY_DIR}/dmpclaimConfigVersion.cmake
              cmake/dmpclaimFramework.cmake
        DESTINATION ${package_dir} ${in_development})
install(EXPORT dmpclaimTargets NAMESPACE dmpclaim:: DESTINATION ${package_dir} ${in_development})

cmake_path(APPEND pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR}) # or LIBDIR, when that is absolute
cmake_path(APPEND pc_includedir "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
install_configured(cmake/dmpclaim.pc ${CMAKE_INSTALL_LIBDIR}/pkgconfig ${in_development})

# Only stand-ins have CMake targets and headers of sinks.
if(stand_ins)
    install(TARGETS ${stand_ins} EXPORT dmpclaimStandIns
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ${in_framework})
    install(DIRECTORY pdk/stand_ins/pdk DESTINATION ${header_dir} ${in_framework} ${header_names})
    install(EXPORT dmpclaimStandIns NAMESPACE dmpclaim:: DESTINATION ${package_dir} ${in_framework})
endif()
