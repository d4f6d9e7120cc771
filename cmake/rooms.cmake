# Rooms: folders of sources that see only the rooms which they link.
#
# A header of room NAME is included as "NAME/header.h". The include folder of a room holds a link to
# the room's folder and nothing else, so that an include of a room that is not linked does not
# compile.

# add_room_headers(TARGET NAME FOLDER): lets targets that link TARGET include "NAME/...".
function(add_room_headers target name folder)
    set(include ${CMAKE_BINARY_DIR}/rooms/${name})
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK ${folder} ${include}/${name} SYMBOLIC)
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${include}>)
endfunction()
