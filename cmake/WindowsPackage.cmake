# SPDX-License-Identifier: MIT
# The zip for Windows: "cpack" in the build folder of the Windows edition makes it. What a host needs lies at its top;
# nothing of it has to be installed.
set(package_notes ${CMAKE_BINARY_DIR}/README.txt)
set(example_manifest ${CMAKE_BINARY_DIR}/ReadBatch.exe.manifest)
configure_file(${CMAKE_CURRENT_LIST_DIR}/WindowsPackage.txt.in ${package_notes} @ONLY NEWLINE_STYLE WIN32)
configure_file(${PROJECT_SOURCE_DIR}/examples/windows/ReadBatch.exe.manifest.in ${example_manifest} @ONLY)

install(FILES $<TARGET_FILE:KELReader81U> ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/LKELReader81.txt ${com_manifest}
              $<TARGET_FILE:ReadBatch> ${example_manifest} ${package_notes}
        DESTINATION .)
if(KEL_COMMAND)
    install(FILES $<TARGET_FILE:kelreader> DESTINATION .)
    install(FILES $<TARGET_FILE:OMRAPI_simulated> DESTINATION simulated)
endif()
install(FILES LICENSE DESTINATION . RENAME LICENSE.txt)
# For those who build a host.
install(FILES ${idl_file} ${com_generated}/KELReader81U.tlb ${com_generated}/KELReader81U.h DESTINATION development)
install(DIRECTORY examples/windows/ DESTINATION examples PATTERN "CMakeLists.txt" EXCLUDE PATTERN "*.in" EXCLUDE)
install(FILES docs/windows.md DESTINATION docs)
install(DIRECTORY docs/readers DESTINATION docs FILES_MATCHING PATTERN "*.md" PATTERN "advice" EXCLUDE)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME KELReader81U)
set(CPACK_PACKAGE_FILE_NAME KELReader81U-${PROJECT_VERSION}-win${com_width})
set(CPACK_STRIP_FILES ON)
include(CPack)
