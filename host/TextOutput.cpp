// SPDX-License-Identifier: MIT
#include "host/TextOutput.h"

#include "host/OutputFile.h"
#include "host/UsageError.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace kel::host {

TextOutput::TextOutput(const std::filesystem::path& file)
    : descriptor_(openOutputFile(file)), ownFile_(true), name_(file.string())
{
    if (descriptor_ < 0)
        throw OperationError(name_ + " cannot be written: " + std::strerror(errno) + ".");
}

TextOutput::~TextOutput()
{
    if (ownFile_)
        ::close(descriptor_);
}

bool TextOutput::write(std::string_view line)
{
    if (failed())
        return false;
    const off_t start = ownFile_ ? ::lseek(descriptor_, 0, SEEK_CUR) : -1;
    std::string_view rest = line;
    while (!rest.empty()) {
        const std::ptrdiff_t written = writeText(descriptor_, rest);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0) {
            const int error = errno;
            fail(error);
            // The part of the line that a full disk has accepted is removed.
            if (rest.size() < line.size() && start >= 0 && ::ftruncate(descriptor_, start) != 0)
                problem_ += " Its last line is not whole.";
            return false;
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void TextOutput::writeOrFail(std::string_view line)
{
    if (!write(line))
        throw OperationError(problem_);
}

void TextOutput::fail(int error)
{
    problem_ = name_ + " cannot be written: " + std::strerror(error) + ".";
    if (error == ENOSPC)
        problem_ = name_ + " cannot be written: no space is left. Free some, or name another file with --out.";
}

} // namespace kel::host
