# SPDX-License-Identifier: MIT
# With KEL_BUILD_IN_CTEST the build is the first of the tests, and a fixture of those that need it. What needs none of it,
# and mostly waits, runs beside it.
option(KEL_BUILD_IN_CTEST "Let ctest build what the tests need" OFF)
if(KEL_BUILD_IN_CTEST)
    include(ProcessorCount)
    ProcessorCount(processors)
    add_test(NAME Build COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --parallel ${processors})
    set_tests_properties(Build PROPERTIES FIXTURES_SETUP build COST 1000)
endif()

# The tests of this folder so far need the build, but for some.
function(kel_tests_need_build)
    if(KEL_BUILD_IN_CTEST)
        get_property(tests DIRECTORY PROPERTY TESTS)
        list(REMOVE_ITEM tests Build ${ARGN})
        set_property(TEST ${tests} APPEND PROPERTY FIXTURES_REQUIRED build)
    endif()
endfunction()
