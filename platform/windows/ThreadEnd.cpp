// SPDX-License-Identifier: MIT
// At the end of a thread its variables are destroyed, and the memory that they are in is given back. The run time does
// both through keys of the threads' library, which runs them in the order in which they were made: that of the memory
// at the first use of any variable, that of the destructors after it. So the destructors would find memory that is no
// longer theirs. Here their key is made first of all.

#include <cxxabi.h>

namespace kel {

namespace {

void _GLIBCXX_CDTOR_CALLABI nothing(void*) {}

/// Before any other code of the component runs.
[[gnu::constructor(101)]] void destroyBeforeMemoryIsGivenBack()
{
    abi::__cxa_thread_atexit(&nothing, nullptr, nullptr);
}

} // namespace

} // namespace kel
