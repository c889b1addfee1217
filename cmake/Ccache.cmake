# SPDX-License-Identifier: MIT
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # Precompiled headers are kept too; a second checkout finds what the first one has compiled.
    cmake_path(GET PROJECT_SOURCE_DIR PARENT_PATH checkouts)
    set(CMAKE_C_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
                                  CCACHE_BASEDIR=${checkouts} CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1 ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_C_COMPILER_LAUNCHER})
endif()
