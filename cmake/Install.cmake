# SPDX-License-Identifier: MIT
# Where things go. The component, its language file and the modules that it loads lie in one folder, since it looks for
# them beside itself; the usual places hold links to what others call by name.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(folder ${CMAKE_INSTALL_LIBDIR}/kelreader81u)

# A link at `name` (below the prefix) to a file of the folder.
function(kel_install_link name file component)
    cmake_path(GET name PARENT_PATH place)
    cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${place} OUTPUT_VARIABLE back)
    install(CODE "
        set(root \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
        file(MAKE_DIRECTORY \"\${root}/${place}\")
        file(CREATE_LINK \"${back}/${file}\" \"\${root}/${name}\" SYMBOLIC)" COMPONENT ${component})
endfunction()

set_target_properties(KELReader81U PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
# Its records may grow with each minor version.
set(host_soversion ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set_target_properties(KELReader81U_host PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${host_soversion})
# Everything of ours lies in one folder.
set_target_properties(kelreader KELReader81U_host PROPERTIES INSTALL_RPATH "$ORIGIN")

# The command, the component and what both load.
install(TARGETS kelreader RUNTIME DESTINATION ${folder} COMPONENT command)
install(TARGETS KELReader81U KELReader81U_host EXPORT KELReader81UTargets
        LIBRARY DESTINATION ${folder} COMPONENT command NAMELINK_COMPONENT development)
if(TARGET KELReader81U_remote)
    install(TARGETS KELReader81U_remote LIBRARY DESTINATION ${folder} COMPONENT command)
endif()
if(TARGET KELReader81U_stream)
    install(TARGETS KELReader81U_stream LIBRARY DESTINATION ${folder} COMPONENT command)
endif()
if(TARGET KELReader81U_web)
    install(TARGETS KELReader81U_web LIBRARY DESTINATION ${folder} COMPONENT command)
endif()
install(TARGETS OMRAPI_simulated LIBRARY DESTINATION ${folder} COMPONENT command)
install(FILES ${CMAKE_BINARY_DIR}/bin/LKELReader81.txt DESTINATION ${folder} COMPONENT command)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright COMPONENT command)
install(DIRECTORY docs/readers DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT command
        FILES_MATCHING PATTERN "*.md" PATTERN "advice" EXCLUDE)
install(FILES docs/kelreader.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
install(FILES docs/station.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT command)
install(DIRECTORY docs/screenshots DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT command)
install(FILES station/station.schema.json stream/message.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/kelreader COMPONENT command)
# Stations and collectors as services.
install(FILES service/kelreader-station@.service service/kelreader-collect@.service DESTINATION lib/systemd/system COMPONENT command)
install(FILES service/kelreader.sysusers DESTINATION lib/sysusers.d RENAME kelreader.conf COMPONENT command)
set(shared_object libKELReader81U.so.${PROJECT_VERSION_MAJOR})
kel_install_link(${CMAKE_INSTALL_BINDIR}/kelreader kelreader command)
kel_install_link(${CMAKE_INSTALL_LIBDIR}/${shared_object} ${shared_object} command)
kel_install_link(${CMAKE_INSTALL_LIBDIR}/libKELReader81U_host.so.${host_soversion} libKELReader81U_host.so.${host_soversion}
                 command)

# The options dialog's window, a package of its own, so that a machine without a display needs no toolkit.
if(TARGET KELReader81U_options_qt)
    install(TARGETS KELReader81U_options_qt LIBRARY DESTINATION ${folder} COMPONENT options)
endif()

# The Python package, where Debian's Python looks for packages.
if(TARGET kel_python)
    set(python_folder lib/python3/dist-packages/kelreader)
    cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${python_folder} OUTPUT_VARIABLE back)
    set_target_properties(kel_python PROPERTIES INSTALL_RPATH "$ORIGIN/${back}")
    install(TARGETS kel_python LIBRARY DESTINATION ${python_folder} COMPONENT python)
    install(DIRECTORY python/kelreader/ DESTINATION ${python_folder} COMPONENT python
            FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)
    install(FILES docs/python.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT python)
endif()

# For those who build a host.
install(DIRECTORY ${KEL_PUBLIC_INCLUDE}/KELReader81U DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/KELReader81U)
configure_package_config_file(cmake/KELReader81UConfig.cmake.in KELReader81UConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(KELReader81UConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KELReader81UConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/KELReader81UConfigVersion.cmake
        DESTINATION ${package} COMPONENT development)
install(EXPORT KELReader81UTargets NAMESPACE KELReader81U:: DESTINATION ${package} COMPONENT development)
cmake_path(SET KEL_PKGCONFIG_TO_PREFIX .)
cmake_path(RELATIVE_PATH KEL_PKGCONFIG_TO_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
configure_file(cmake/KELReader81U.pc.in KELReader81U.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KELReader81U.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
kel_install_link(${CMAKE_INSTALL_LIBDIR}/libKELReader81U.so ${shared_object} development)
kel_install_link(${CMAKE_INSTALL_LIBDIR}/libKELReader81U_host.so libKELReader81U_host.so.${host_soversion} development)
install(FILES docs/hosts.md docs/windows.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT development
        FILES_MATCHING PATTERN "*.cpp" PATTERN "CMakeLists.txt" PATTERN "windows" EXCLUDE)

# Debian packages: "cpack" in a build folder makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelreader81u)
set(CPACK_PACKAGE_CONTACT "The KELReader81U developers <kelreader81u@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "one object for optical mark readers of five makers")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL command development)
if(TARGET KELReader81U_options_qt)
    list(APPEND CPACK_COMPONENTS_ALL options)
endif()
if(TARGET kel_python)
    list(APPEND CPACK_COMPONENTS_ALL python)
    math(EXPR python_next_minor "${KEL_PYTHON_MINOR} + 1")
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/bin)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME kelreader81u)
set(CPACK_DEBIAN_COMMAND_PACKAGE_RECOMMENDS kelreader81u-options)
set(CPACK_DEBIAN_COMMAND_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_SOURCE_DIR}/cmake/triggers ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/postinst
    ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/prerm)
set(CPACK_DEBIAN_COMMAND_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMMAND_DESCRIPTION "the command kelreader and the component for optical mark readers")
set(CPACK_DEBIAN_OPTIONS_PACKAGE_NAME kelreader81u-options)
set(CPACK_DEBIAN_OPTIONS_PACKAGE_DEPENDS "kelreader81u (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_OPTIONS_DESCRIPTION "the options window of KELReader81U")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-kelreader81u)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "kelreader81u (= ${PROJECT_VERSION}), python3 (>= 3.${KEL_PYTHON_MINOR}), python3 (<< 3.${python_next_minor}), python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-pandas)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "optical mark readers in Python: a sheet is an array")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkelreader81u-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "kelreader81u (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "headers, CMake package and examples for hosts of KELReader81U")
include(CPack)
