// SPDX-License-Identifier: MIT
#include "host/OutputFile.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace kel::host {

int openOutputFile(const std::filesystem::path& file)
{
    return ::_wopen(file.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
}

} // namespace kel::host
