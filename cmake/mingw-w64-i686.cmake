# SPDX-License-Identifier: MIT
# The Windows edition, 32 bits wide. Hosts call with a stack aligned to 4; numbers are computed as in 64 bits, without the
# wider intermediates of the x87.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
