# SPDX-License-Identifier: MIT
# What the Windows platform stands on: libraries of the system alone.
target_compile_definitions(kel_objects PUBLIC UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
target_link_libraries(kel_objects PUBLIC ole32 oleaut32 uuid advapi32 comctl32 gdi32 user32)
