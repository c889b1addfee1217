# SPDX-License-Identifier: MIT
# What the posix platform stands on.
pkg_check_modules(SERIALPORT REQUIRED IMPORTED_TARGET libserialport)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
target_link_libraries(kel_objects PUBLIC PkgConfig::SERIALPORT PkgConfig::SQLITE ${CMAKE_DL_LIBS})
