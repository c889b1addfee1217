# SPDX-License-Identifier: MIT
# The Windows edition, 64 bits wide.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
