# SPDX-License-Identifier: MIT
# Reference pages of the public headers: the target "reference" makes them in the folder "reference" of the build, and
# fails on a warning.
find_program(KEL_DOXYGEN doxygen)
if(KEL_DOXYGEN)
    string(REPLACE ";" " " headers "${KEL_PUBLIC_HEADERS};${KEL_HOST_HEADERS}")
    set(reference_folder ${PROJECT_BINARY_DIR}/reference)
    file(MAKE_DIRECTORY ${reference_folder})
    set(reference_command ${CMAKE_COMMAND} -E env KEL_PUBLIC_HEADERS=${headers} KEL_VERSION=${PROJECT_VERSION}
                          KEL_REFERENCE=${reference_folder} ${KEL_DOXYGEN} docs/Doxyfile)
    add_custom_target(reference COMMAND ${reference_command} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
endif()
