# SPDX-License-Identifier: MIT
# The component's code is left by an exception at any statement when the processor finds a fault in it. Clang cannot
# compile that, and so a component built with it leaves all faults to the host.
function(kel_faults_are_exceptions target)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fnon-call-exceptions>)
    endif()
endfunction()
