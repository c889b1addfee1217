# SPDX-License-Identifier: MIT
# The Windows edition of the component, cross-compiled with mingw-w64. What both widths share: mingw-w64-x86_64.cmake and
# mingw-w64-i686.cmake name the processor. The -posix compiler has C++ threads.
set(CMAKE_SYSTEM_NAME Windows)
set(mingw_target ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
set(CMAKE_C_COMPILER ${mingw_target}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw_target}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw_target}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${mingw_target})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

# A fault of the processor passes through the frames as an exception does, also through those that call nothing.
string(APPEND CMAKE_CXX_FLAGS_INIT " -fnon-call-exceptions")
# No DLL but the system's: the compiler's run time and the threads are linked in.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT -static)
endforeach()
