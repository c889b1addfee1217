// SPDX-License-Identifier: MIT
// No table says how the frames of these functions are left: tests/CMakeLists.txt leaves the tables out.

#include "tests/failure/Faults.h"

namespace kel::test {

namespace {

__attribute__((noinline, no_sanitize("address", "undefined", "thread"))) int readNowhere()
{
    const volatile int* volatile nowhere = nullptr;
    return *nowhere;
}

} // namespace

__attribute__((no_sanitize("address", "undefined", "thread"))) void faultWithoutTables()
{
    volatile int read = readNowhere();
    static_cast<void>(read);
}

} // namespace kel::test
