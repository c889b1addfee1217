# SPDX-License-Identifier: MIT
# The tests of the Windows edition under Wine, as part of the tests of this system's build: each test_*.py is one for each
# width. They need the edition built, in KEL_WINDOWS_BUILD and KEL_WINDOWS32_BUILD; run-tests.sh does that.
set(KEL_WINDOWS_BUILD "" CACHE PATH "The build folder of the 64-bit Windows edition; its tests run if it is set")
set(KEL_WINDOWS32_BUILD "" CACHE PATH "The build folder of the 32-bit Windows edition; its tests run if it is set")
set(KEL_WINE_ROOT "" CACHE PATH "The root made by scripts/wine-root.sh; this system's own Wine if it is empty")
set(KEL_WINE_WIDTHS 64 32 CACHE STRING "The widths of the programs that this Wine runs")

file(GLOB scripts CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/test_*.py)

# The tests of one width, in a prefix of their own.
function(kel_windows_tests width build)
    set(group Windows${width})
    set(environment KEL_WINDOWS_BIN=${build}/bin KEL_WINDOWS_WIDTH=${width} KEL_WINDOWS_64=${KEL_WINDOWS_BUILD}
        KEL_WINDOWS_32=${KEL_WINDOWS32_BUILD} KEL_READER_PROGRAM=${product}/bin/kelreader
        WINEPREFIX=${CMAKE_BINARY_DIR}/wine${width} PYTHONDONTWRITEBYTECODE=1)
    if(KEL_WINE_ROOT)
        list(APPEND environment KEL_WINE_ROOT=${KEL_WINE_ROOT})
    endif()
    function(kel_windows_test name)
        add_test(NAME ${group}_${name} COMMAND ${Python3_EXECUTABLE} ${ARGN})
        set_tests_properties(${group}_${name} PROPERTIES ENVIRONMENT "${environment}" TIMEOUT 1500)
    endfunction()
    if(NOT width IN_LIST KEL_WINE_WIDTHS)
        kel_windows_test(image ${CMAKE_CURRENT_LIST_DIR}/test_image.py)
        return()
    endif()
    kel_windows_test(prefix ${CMAKE_CURRENT_LIST_DIR}/harness.py start)
    kel_windows_test(end ${CMAKE_CURRENT_LIST_DIR}/harness.py stop)
    set_tests_properties(${group}_prefix PROPERTIES FIXTURES_SETUP wine${width})
    set_tests_properties(${group}_end PROPERTIES FIXTURES_CLEANUP wine${width})
    foreach(script IN LISTS scripts)
        if(script MATCHES "test_(widths|installer)" AND NOT (width EQUAL 32 AND KEL_WINDOWS_BUILD))
            continue() # for both widths in one prefix
        endif()
        if(script MATCHES "test_(command|ports)" AND NOT EXISTS ${build}/bin/kelreader.exe)
            continue() # it was not built
        endif()
        get_filename_component(name ${script} NAME_WE)
        string(REPLACE test_ "" name ${name})
        kel_windows_test(${name} ${script})
        # Their dialogues have pauses in which a simulated reader has to reply: less goes on beside them.
        set_tests_properties(${group}_${name} PROPERTIES FIXTURES_REQUIRED wine${width} PROCESSORS 3)
        if(name MATCHES "^(com|dialog|platform)$")
            # They show windows, and the focus is in one of all that a prefix shows.
            set_tests_properties(${group}_${name} PROPERTIES RESOURCE_LOCK focus${width})
        endif()
        if(name STREQUAL ports)
            set_tests_properties(${group}_${name} PROPERTIES RUN_SERIAL ON) # it opens what the others use
        endif()
    endforeach()
endfunction()

if(KEL_WINDOWS_BUILD)
    kel_windows_tests(64 ${KEL_WINDOWS_BUILD})
endif()
if(KEL_WINDOWS32_BUILD)
    kel_windows_tests(32 ${KEL_WINDOWS32_BUILD})
endif()
