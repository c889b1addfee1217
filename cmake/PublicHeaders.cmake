# SPDX-License-Identifier: MIT
# The headers that a host sees. They include each other only. Hosts include them as <KELReader81U/clsKELReader.h>, or all
# of them as <KELReader81U/KELReader81U.h>: cmake/public_headers.py lays them out that way.
set(KEL_PUBLIC_HEADERS
    contract/AnswerKey.h
    contract/AnswerKeyObject.h
    contract/Dictionary.h
    contract/clsKELReaderBarcode.h
    contract/clsKELReaderBarcodes.h
    contract/clsKELReaderPrinter.h
    contract/clsKELReaderWindow.h
    contract/clsKELReaderWindows.h
    failure/ErrorReport.h
    options/Controls.h
    options/Form.h
    options/OptionsAids.h
    options/OptionsPresenter.h
    options/frmOptions.h
    platform/Carrier.h
    platform/ErrorLibrary.h
    platform/HostPump.h
    platform/LineErrors.h
    platform/ScanTimer.h
    platform/Screen.h
    platform/SerialControl.h
    profiles/ProfileValues.h
    profiles/clsKELReaderProfile.h
    profiles/clsKELReaderProfiles.h
    reader/ReaderEvents.h
    reader/clsKELReader.h
    startup/CrashCapture.h
    types/Arrays.h
    types/Boolean.h
    types/Enumerations.h
    types/Export.h
    types/Hidden.h
    types/Numbers.h
    types/Reference.h
    types/RuntimeFailure.h
    types/SourceLocation.h
)
# Those of the layer for hosts in modern C++.
set(KEL_HOST_HEADERS
    formats/RegistryPath.h
    host/AnswerKeyFile.h
    host/Events.h
    host/Failure.h
    host/Fields.h
    host/Form.h
    host/ModelLookup.h
    host/Ports.h
    host/Reader.h
    host/ReaderAdvice.h
    host/Replay.h
    host/Reports.h
    host/Request.h
    host/Simulation.h
    host/UsageError.h
)
set(KEL_PUBLIC_INCLUDE ${PROJECT_BINARY_DIR}/include)
# What includes one of them is compiled again in the same build: ninja has to know that they are made.
list(TRANSFORM KEL_PUBLIC_HEADERS REPLACE "^.*/" "" OUTPUT_VARIABLE laid_out)
list(TRANSFORM KEL_HOST_HEADERS REPLACE "^formats/" "" OUTPUT_VARIABLE laid_out_for_host)
list(APPEND laid_out ${laid_out_for_host} KELReader81U.h)
list(TRANSFORM laid_out PREPEND ${KEL_PUBLIC_INCLUDE}/KELReader81U/)
add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/public_headers.stamp
    BYPRODUCTS ${laid_out}
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/public_headers.py ${KEL_PUBLIC_INCLUDE}
            ${KEL_PUBLIC_HEADERS} ${KEL_HOST_HEADERS}
    COMMAND ${CMAKE_COMMAND} -E touch ${PROJECT_BINARY_DIR}/public_headers.stamp
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    DEPENDS cmake/public_headers.py ${KEL_PUBLIC_HEADERS} ${KEL_HOST_HEADERS}
    COMMENT "Laying out the public headers"
    VERBATIM)
add_custom_target(kel_public_headers ALL DEPENDS ${PROJECT_BINARY_DIR}/public_headers.stamp)
