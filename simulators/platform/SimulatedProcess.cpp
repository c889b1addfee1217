// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedProcess.h"

#include <system_error>

namespace kel {

SimulatedProcess::SimulatedProcess()
{
    std::error_code failed;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
    componentFolder_ = failed ? std::filesystem::current_path() : program.parent_path();
    commandLine_ = "host";
}

} // namespace kel
