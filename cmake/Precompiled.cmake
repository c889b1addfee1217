# SPDX-License-Identifier: MIT
# The headers of the standard library that most sources take, and those that are named, read once a target. Headers of the
# project's own stay out: a change of one would compile everything again.
#     kel_precompile(target [<header>...])
#     kel_precompile(target REUSE_FROM other)   # takes over those of a target with the same flags
function(kel_precompile target)
    kel_precompile_only(${target} <algorithm> <array> <charconv> <chrono> <cmath> <cstdint> <cstring> <filesystem> <fstream>
                        <functional> <iostream> <map> <memory> <optional> <set> <sstream> <string> <string_view> <utility>
                        <variant> <vector> ${ARGN})
    kel_join_by_folder(${target})
endfunction()

# The same without the standard library's, and without joining sources.
function(kel_precompile_only target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" REUSE_FROM "")
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    if(arg_REUSE_FROM)
        target_precompile_headers(${target} REUSE_FROM ${arg_REUSE_FROM})
    else()
        target_precompile_headers(${target} PRIVATE ${arg_UNPARSED_ARGUMENTS})
    endif()
endfunction()

# Where sources are joined (CMAKE_UNITY_BUILD), those of one folder are: they share the headers of their subject, and their
# names do not meet those of another folder.
function(kel_join_by_folder target)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(ABSOLUTE_PATH source NORMALIZE OUTPUT_VARIABLE folder)
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
        cmake_path(GET folder PARENT_PATH folder)
        string(REPLACE "/" "_" folder "${folder}")
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${folder}")
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
    if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # It takes a joined source for a header, in which a class may not hold what is the file's own.
        target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
    endif()
endfunction()
