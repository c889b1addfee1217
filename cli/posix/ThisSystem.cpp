// SPDX-License-Identifier: MIT
#include "cli/ThisSystem.h"

#include <sys/utsname.h>

namespace kel {

const std::string_view kMemoryAdvice = "close other programs or raise the limit (ulimit -v).";
const std::string_view kThreadAdvice = "end other programs or raise the limit (ulimit -u).";

std::string systemText()
{
    utsname system{};
    if (::uname(&system) != 0)
        return "unknown";
    return std::string(system.sysname) + " " + system.release + " " + system.machine;
}

} // namespace kel
