// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What was built, and where the tests' data lie. The paths stand in one file alone, so that a second checkout shares
/// the compiler cache of the first one.
namespace kel::test {

std::string builtVersion();           ///< the version of the component, "8.1.0"
std::string testData();               ///< the folder tests/
std::string componentLibrary();       ///< libKELReader81U.so
std::string readerProgram();          ///< kelreader
std::string readBatchProgram();       ///< the example read_batch
std::string scriptedOptionsProgram(); ///< the example scripted_options
std::string builtLocales();           ///< the folder of the locales de_DE.UTF-8, en_US.UTF-8 and fr_FR.UTF-8
std::string simulatedOmrApi();        ///< the library of the USB readers' maker, simulated

} // namespace kel::test
