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
            INTERFACE_LINK_LIBRARIES ACE)
    endforeach()
endfunction()
