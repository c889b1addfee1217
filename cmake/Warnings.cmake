# SPDX-License-Identifier: MIT
# How everything here is compiled.
add_library(kel_options INTERFACE)
target_compile_features(kel_options INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)
target_compile_options(kel_options INTERFACE -Wall -Wextra -Wconversion -Wshadow
                       $<$<BOOL:${KEL_WARNINGS_AS_ERRORS}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # It looks for memory that it could use again when it has taken this much, in kB: never. Joined sources take a fifth
    # more memory so, and a sixth less time.
    target_compile_options(kel_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:--param=ggc-min-heapsize=1000000>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # g++ 12 takes "text" + std::string for an overlapping copy, or one beyond bounds, once it is inlined (the thread
    # sanitizer's build inlines too): its bugs 105651 and 105329.
    set(bounds -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
    target_compile_options(kel_options INTERFACE -Wno-restrict)
    if(KEL_SANITIZE STREQUAL "thread")
        target_compile_options(kel_options INTERFACE ${bounds})
    else()
        target_compile_options(kel_options INTERFACE "$<$<NOT:$<CONFIG:Debug>>:${bounds}>")
    endif()
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # To g++ a change of sign is no conversion.
    target_compile_options(kel_options INTERFACE -Wno-sign-conversion)
endif()
if(KEL_SANITIZE)
    target_compile_options(kel_options INTERFACE -fsanitize=${KEL_SANITIZE} -fno-omit-frame-pointer
                           -fno-sanitize-recover=all)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # Under the sanitizers g++ 12 takes parts of the standard library for uninitialized: its bug 105562.
        target_compile_options(kel_options INTERFACE -Wno-maybe-uninitialized)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # A program that takes a table of types from a library has not defined it twice; and a module knows the types of
        # the component by their layout alone, since they are not exported.
        target_compile_options(kel_options INTERFACE -fsanitize-address-use-odr-indicator -fno-sanitize=function,vptr)
    endif()
    if(KEL_SANITIZE MATCHES "address")
        target_compile_definitions(kel_options INTERFACE KEL_WATCHES_ADDRESSES)
        # Half a million places in the command hold addresses then, which are to be set at each of its thousands of starts
        # unless it lies where it was linked to.
        string(APPEND CMAKE_EXE_LINKER_FLAGS " -no-pie")
    endif()
    target_link_options(kel_options INTERFACE -fsanitize=${KEL_SANITIZE})
endif()
if(KEL_BUILD_FUZZERS)
    # libFuzzer sees by this which inputs reach something new; without it they are noise.
    target_compile_options(kel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(KEL_COVERAGE)
    target_compile_options(kel_options INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(kel_options INTERFACE --coverage)
endif()
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
