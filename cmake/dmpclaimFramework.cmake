# Makes ACE, whose strings are in the library's interface, the target dmpclaim::ACE.
#
# `problem` names a variable for what is wrong, which is empty when nothing is.
function(dmpclaim_import_ace problem)
    set(${problem} "" PARENT_SCOPE)
    find_path(ACE_INCLUDE_DIR ace/SString.h)
    find_library(ACE_LIBRARY ACE)
    if(NOT ACE_INCLUDE_DIR OR NOT ACE_LIBRARY)
        set(${problem} "ACE is missing, its library or its header ace/SString.h. Install Debian's \
libace-dev, or set ACE_LIBRARY and ACE_INCLUDE_DIR to where they are." PARENT_SCOPE)
        return()
    endif()
    if(NOT TARGET dmpclaim::ACE)
        add_library(dmpclaim::ACE UNKNOWN IMPORTED)
    endif()
    set_target_properties(dmpclaim::ACE PROPERTIES
        IMPORTED_LOCATION ${ACE_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${ACE_INCLUDE_DIR})
endfunction()

# Makes the libraries of a host's own framework targets to link, for the build and for the hosts of
# an installation: dmpclaim::zepdk, dmpclaim::zecmn and dmpclaim::zeutil.
#
# `directory` holds the libraries, or has them in lib. `problem` names a variable for what is wrong,
# which is empty when nothing is.
function(dmpclaim_import_framework directory problem)
    set(targets zepdk zecmn zeutil)
    set(libraries libzepdk_4_4ST.so libzecmn_4_4ST.so libzeutilST.so)
    set(${problem} "" PARENT_SCOPE)
    cmake_path(ABSOLUTE_PATH directory NORMALIZE)
    set(folder ${directory})
    if(NOT EXISTS ${folder}/libzepdk_4_4ST.so)
        set(folder ${directory}/lib)
    endif()
    foreach(target library IN ZIP_LISTS targets libraries)
        if(NOT EXISTS ${folder}/${library})
            set(${problem} "${library} is not in ${folder}" PARENT_SCOPE)
            return()
        endif()
        if(NOT TARGET dmpclaim::${target})
            add_library(dmpclaim::${target} SHARED IMPORTED)
        endif()
        set_target_properties(dmpclaim::${target} PROPERTIES
            IMPORTED_LOCATION ${folder}/${library}
            IMPORTED_NO_SONAME ON
            INTERFACE_LINK_LIBRARIES dmpclaim::ACE)
    endforeach()
endfunction()
