# SPDX-License-Identifier: MIT
# All C++ sources of some folders, the folders below them included, but for those of the other system.
function(kel_sources result)
    if(WIN32)
        set(elsewhere "(^|/)(posix|pseudo_terminal)/")
    else()
        set(elsewhere "(^|/)windows/")
    endif()
    set(found)
    foreach(folder IN LISTS ARGN)
        file(GLOB_RECURSE here RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS
             ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
        list(APPEND found ${here})
    endforeach()
    list(FILTER found EXCLUDE REGEX "${elsewhere}")
    list(TRANSFORM found PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    set(${result} ${found} PARENT_SCOPE)
endfunction()
