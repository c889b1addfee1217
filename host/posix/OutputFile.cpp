// SPDX-License-Identifier: MIT
#include "host/OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

namespace kel::host {

int openOutputFile(const std::filesystem::path& file)
{
    return ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

std::ptrdiff_t writeText(int descriptor, std::string_view text)
{
    return ::write(descriptor, text.data(), text.size());
}

bool isTerminal(int descriptor)
{
    return ::isatty(descriptor) == 1;
}

} // namespace kel::host
