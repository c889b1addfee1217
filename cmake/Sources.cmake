# SPDX-License-Identifier: MIT
# All C++ sources of some folders, the folders below them included.
function(kel_sources result)
    set(found)
    foreach(folder IN LISTS ARGN)
        file(GLOB_RECURSE here CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
        list(APPEND found ${here})
    endforeach()
    set(${result} ${found} PARENT_SCOPE)
endfunction()
