#include "startup/Main.h"

#include "platform/posix/PosixPlatform.h"

#include <mutex>

namespace kel {

void Main()
{
    static std::once_flag once;
    std::call_once(once, [] { setPlatformFactory(&makePosixPlatform); });
}

namespace {

// Kept although nothing names it: loading it is all that it is for.
[[maybe_unused, gnu::used]] const bool started = (Main(), true);

} // namespace

} // namespace kel
