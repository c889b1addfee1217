# SPDX-License-Identifier: MIT
# What the command, the tests and hosts in C++ are made of beside the component.

# The same objects for the command and the tests, with everything visible. An archive of them would be searched once, in
# the order of the line, and miss what the libraries after it ask for.
add_library(kel_component INTERFACE)
target_link_libraries(kel_component INTERFACE kel_objects $<FILTER:$<TARGET_OBJECTS:kel_objects>,EXCLUDE,\\.gch$>)
add_dependencies(kel_component kel_language_file ${kel_modules})

# Recorded sessions and the text formats of files, which the command, the simulated readers and the tests share; no part
# of the component.
kel_sources(recording_sources formats recording)
add_library(kel_recording STATIC ${recording_sources})
target_link_libraries(kel_recording PUBLIC kel_headers)
if(WIN32)
    target_link_libraries(kel_recording PUBLIC kel_host_headers)
else()
    target_link_libraries(kel_recording PUBLIC kel_basics)
endif()
kel_precompile(kel_recording)

# Simulated readers, the simulated platform and pseudo-terminals; no part of the component.
kel_sources(simulator_sources simulators)
list(FILTER simulator_sources EXCLUDE REGEX "/simulators/sekonic_usb/library/")
add_library(kel_simulators STATIC ${simulator_sources})
target_link_libraries(kel_simulators PUBLIC kel_recording)
kel_precompile(kel_simulators)
target_compile_options(kel_simulators PRIVATE ${KEL_HOT_OPTIONS})

add_subdirectory(pictures)

# The layer for hosts in modern C++. Its static form and what it stands on take the component from whoever links them:
# libraries and the command the shared one; the tests the objects.
kel_sources(host_sources host)
# What the operators' pages advise, from the same files.
set(advice ${CMAKE_CURRENT_BINARY_DIR}/generated/ReaderAdviceRows.cpp)
set(advice_script ${PROJECT_SOURCE_DIR}/scripts/embed_reader_advice.py)
file(GLOB advice_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/readers/advice/*.md)
add_custom_command(
    OUTPUT ${advice}
    COMMAND ${Python3_EXECUTABLE} -B ${advice_script} --out ${advice}
    DEPENDS ${advice_files} ${advice_script} ${PROJECT_SOURCE_DIR}/scripts/reader_advice.py
    COMMENT "Embedding the advice on reports"
    VERBATIM)
add_library(kel_host STATIC ${host_sources} ${advice})
target_link_libraries(kel_host PUBLIC kel_simulators PRIVATE kel_pictures)
kel_precompile(kel_host REUSE_FROM kel_recording)
