# SPDX-License-Identifier: MIT
# The component as a COM server: KELReader81U.dll, with the type library and the version in its resources.
#
#   com/KELReader81U.idl   the interfaces; widl makes KELReader81U.tlb, KELReader81U.h and KELReader81U_i.c of it,
#                          which lie in the build folder com/generated
#   com/KELReader81U.def   the exports
include(VersionResource)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(com_width 64)
    set(com_processor amd64) # as manifests call it
else()
    set(com_width 32)
    set(com_processor x86)
endif()
set(com_folder ${PROJECT_SOURCE_DIR}/com)
set(com_generated ${CMAKE_BINARY_DIR}/com/generated)
file(MAKE_DIRECTORY ${com_generated})

file(GLOB com_sources CONFIGURE_DEPENDS ${com_folder}/*.cpp ${com_folder}/KELReader81U.idl ${com_folder}/KELReader81U.def)
set(idl_file ${com_folder}/KELReader81U.idl)
if(idl_file IN_LIST com_sources)
    find_program(WIDL ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32-widl REQUIRED)
    set(made)
    # What widl makes, and the option that makes it. Its headers of the system are Wine's.
    foreach(kind IN ITEMS "KELReader81U.tlb -t" "KELReader81U.h -h" "KELReader81U_i.c -u")
        separate_arguments(kind)
        list(POP_FRONT kind name option)
        add_custom_command(
            OUTPUT ${com_generated}/${name}
            COMMAND ${WIDL} --win${com_width} -I ${com_folder} -L /usr/lib/x86_64-linux-gnu/wine/x86_64-windows ${option}
                    -o ${com_generated}/${name} ${idl_file}
            DEPENDS ${idl_file}
            VERBATIM)
        list(APPEND made ${com_generated}/${name})
    endforeach()
    # By this manifest programs use the server without registration.
    set(com_manifest ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/KELReader81U.manifest)
    add_custom_command(
        OUTPUT ${com_manifest}
        COMMAND ${Python3_EXECUTABLE} ${com_folder}/make_manifest.py ${idl_file} ${PROJECT_VERSION} ${com_processor} ${com_manifest}
        DEPENDS ${idl_file} ${com_folder}/make_manifest.py
        VERBATIM)
    list(APPEND made ${com_manifest})
    add_custom_target(kel_type_library DEPENDS ${made})
endif()

list(FILTER com_sources EXCLUDE REGEX "\\.idl$")
add_library(KELReader81U SHARED ${com_sources})
set_target_properties(KELReader81U PROPERTIES PREFIX "" OUTPUT_NAME KELReader81U)
target_link_libraries(KELReader81U PUBLIC kel_objects)
kel_join_by_folder(KELReader81U)
add_dependencies(KELReader81U kel_language_file)
target_link_options(KELReader81U PRIVATE -Wl,--enable-stdcall-fixup)
if(TARGET kel_type_library)
    add_dependencies(KELReader81U kel_type_library)
    # In C, and so apart from the precompiled headers.
    add_library(kel_interface_ids OBJECT ${com_generated}/KELReader81U_i.c)
    add_dependencies(kel_interface_ids kel_type_library)
    target_sources(KELReader81U PRIVATE $<TARGET_OBJECTS:kel_interface_ids>)
    # What widl writes is not held to our warnings.
    set_source_files_properties(${com_generated}/KELReader81U_i.c PROPERTIES COMPILE_OPTIONS -w)
    target_include_directories(KELReader81U SYSTEM PUBLIC ${com_generated})
endif()
kel_version_resource(KELReader81U KELReader81U.dll "Optical mark readers"
                     RESOURCES "1 TYPELIB \"${com_generated}/KELReader81U.tlb\"" VALUES "VALUE \"OLESelfRegister\", \"\"")
set_source_files_properties(${CMAKE_BINARY_DIR}/resources/KELReader81U.rc PROPERTIES
                            OBJECT_DEPENDS ${com_generated}/KELReader81U.tlb)
