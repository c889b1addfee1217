// SPDX-License-Identifier: MIT
#include "tests/support/BuiltFiles.h"

namespace kel::test {

std::string builtVersion()
{
    return KEL_VERSION;
}
std::string testData()
{
    return KEL_TEST_DATA;
}
std::string componentLibrary()
{
    return KEL_COMPONENT_LIBRARY;
}
std::string readerProgram()
{
    return KEL_READER_PROGRAM;
}
std::string readBatchProgram()
{
    return KEL_READ_BATCH_PROGRAM;
}
std::string scriptedOptionsProgram()
{
    return KEL_SCRIPTED_OPTIONS_PROGRAM;
}
std::string builtLocales()
{
    return KEL_TEST_LOCALES;
}
std::string simulatedOmrApi()
{
    return KEL_OMRAPI_SIMULATED;
}

} // namespace kel::test

/// With LOCPATH set, as for the locales above, newlocale of the C library keeps a copy of it at each call.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:argz_add_sep\n";
}
