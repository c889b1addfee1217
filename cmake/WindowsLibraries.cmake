# SPDX-License-Identifier: MIT
# What the Windows platform stands on: libraries of the system alone.
target_compile_definitions(kel_objects PUBLIC UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
# The header libraries of the host system that are needed; the folder around them is not for this compiler.
set(host_headers ${CMAKE_BINARY_DIR}/host_headers)
file(MAKE_DIRECTORY ${host_headers})
foreach(header IN ITEMS nlohmann/json.hpp CLI/CLI.hpp)
    cmake_path(GET header PARENT_PATH library)
    find_path(${library}_folder ${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(CREATE_LINK ${${library}_folder}/${library} ${host_headers}/${library} SYMBOLIC)
endforeach()
add_library(kel_host_headers INTERFACE)
target_include_directories(kel_host_headers SYSTEM INTERFACE ${host_headers})
target_link_libraries(kel_objects PUBLIC ole32 oleaut32 uuid advapi32 gdi32 user32)
