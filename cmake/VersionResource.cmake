# SPDX-License-Identifier: MIT
# The version, the publisher and the purpose of a file, as Windows shows them among its properties; and what else is to
# stand in its resources, or among the values of the version.
enable_language(RC)
function(kel_version_resource target file description)
    cmake_parse_arguments(PARSE_ARGV 3 other "" "RESOURCES;VALUES" "")
    cmake_path(GET file STEM name)
    set(file_type VFT_APP)
    if(file MATCHES "\\.dll$")
        set(file_type VFT_DLL)
    endif()
    set(resources ${CMAKE_BINARY_DIR}/resources/${name}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/VersionResource.rc.in ${resources} @ONLY)
    target_sources(${target} PRIVATE ${resources})
endfunction()
