// SPDX-License-Identifier: MIT
#include "host/OutputFile.h"

#include <fcntl.h>

namespace kel::host {

int openOutputFile(const std::filesystem::path& file)
{
    return ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

} // namespace kel::host
