# The tests of the Windows edition under Wine, as part of the tests of this system's build: each test_*.py is one. They
# need the edition built, in KEL_WINDOWS_BUILD; run-tests.sh does that.
set(KEL_WINDOWS_BUILD "" CACHE PATH "The build folder of the Windows edition; its tests run if it is set")
if(NOT KEL_WINDOWS_BUILD)
    return()
endif()

set(windows_environment KEL_WINDOWS_BIN=${KEL_WINDOWS_BUILD}/bin KEL_READER_PROGRAM=$<TARGET_FILE:kelreader>
    WINEPREFIX=${KEL_WINDOWS_BUILD}/prefix PYTHONDONTWRITEBYTECODE=1)
function(kel_windows_test name)
    add_test(NAME Windows_${name} COMMAND ${Python3_EXECUTABLE} ${ARGN})
    set_tests_properties(Windows_${name} PROPERTIES ENVIRONMENT "${windows_environment}" TIMEOUT 1500)
endfunction()

kel_windows_test(prefix ${CMAKE_CURRENT_LIST_DIR}/harness.py start)
kel_windows_test(end ${CMAKE_CURRENT_LIST_DIR}/harness.py stop)
set_tests_properties(Windows_prefix PROPERTIES FIXTURES_SETUP wine)
set_tests_properties(Windows_end PROPERTIES FIXTURES_CLEANUP wine)
file(GLOB scripts CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/test_*.py)
foreach(script IN LISTS scripts)
    get_filename_component(name ${script} NAME_WE)
    string(REPLACE test_ "" name ${name})
    kel_windows_test(${name} ${script})
    # Their dialogues have pauses in which a simulated reader has to reply: less goes on beside them.
    set_tests_properties(Windows_${name} PROPERTIES FIXTURES_REQUIRED wine PROCESSORS 3)
endforeach()
