# The house: every folder of src/ holds one or more rooms (CMake targets), each on a floor. A room may use rooms of
# lower floors only; where rooms of one floor lean on each other, their order stands behind the point ("1.2" may
# use "1.1"). Two things hold the rule:
#   - zorvane_room() stops the configuration when a room uses one that isn't below it;
#   - a header can be included only by rooms that link its room, at first or second hand: the include path of a room
#     is a folder of links to its own headers, so an include that runs upward doesn't compile.

# zorvane_room(<name> FLOOR <n[.m]> [SOURCES <files>...] [HEADERS <files>...] [USES <rooms>...])
# Files are named from the folder of the calling CMakeLists.txt and included by their path below src/.
function(zorvane_room name)
    cmake_parse_arguments(ROOM "" "FLOOR" "SOURCES;HEADERS;USES" ${ARGN})
    set(target zorvane_${name})
    set_property(GLOBAL PROPERTY ${target}_FLOOR ${ROOM_FLOOR})

    foreach(used IN LISTS ROOM_USES)
        get_property(used_floor GLOBAL PROPERTY zorvane_${used}_FLOOR)
        if(NOT DEFINED used_floor OR used_floor STREQUAL "")
            message(FATAL_ERROR "Room '${name}' uses '${used}', which isn't a room that stands before it.")
        endif()
        if(NOT used_floor VERSION_LESS ROOM_FLOOR)
            message(FATAL_ERROR "Room '${name}' on floor ${ROOM_FLOOR} may not use '${used}' on floor ${used_floor}: "
                                "split the room or move the interface to a lower floor.")
        endif()
    endforeach()

    set(include_root ${PROJECT_BINARY_DIR}/rooms/${name})
    file(REMOVE_RECURSE ${include_root}) # a header that moved to another room leaves no link behind
    foreach(header IN LISTS ROOM_HEADERS)
        set(source ${CMAKE_CURRENT_SOURCE_DIR}/${header})
        file(RELATIVE_PATH path ${PROJECT_SOURCE_DIR}/src ${source})
        cmake_path(GET path PARENT_PATH folder)
        file(MAKE_DIRECTORY ${include_root}/${folder})
        file(CREATE_LINK ${source} ${include_root}/${path} SYMBOLIC)
    endforeach()

    if(ROOM_SOURCES)
        add_library(${target} STATIC ${ROOM_SOURCES})
        set(scope PUBLIC)
    else()
        add_library(${target} INTERFACE)
        set(scope INTERFACE)
    endif()
    file(MAKE_DIRECTORY ${include_root})
    target_include_directories(${target} ${scope} ${include_root})
    list(TRANSFORM ROOM_USES PREPEND zorvane_)
    target_link_libraries(${target} ${scope} zorvane_options ${ROOM_USES})
endfunction()
