// SPDX-License-Identifier: MIT
#include "strings/InputFile.h"

#include <cerrno>
#include <limits>
#include <utility>

namespace kel {

namespace {

constexpr std::size_t kBlock = 16384;

FailureCode reasonNotOpened(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR: return FailureCode::FileNotFound;
    case EACCES:
    case EPERM: return FailureCode::PermissionDenied;
    default: return FailureCode::FileIoError;
    }
}

std::FILE* openForReading(const std::string& name)
{
#if defined(_WIN32)
    return ::_wfopen(filePath(name).c_str(), L"rb");
#else
    return std::fopen(name.c_str(), "rb");
#endif
}

} // namespace

InputFile::InputFile(const std::string& name) : file_(openForReading(name))
{
    if (!file_)
        throw RuntimeFailure(reasonNotOpened(errno));
}

Int32 InputFile::LOF()
{
    const long here = std::ftell(handle());
    seek(0, SEEK_END);
    const long end = std::ftell(handle());
    if (here < 0 || end < 0)
        throw RuntimeFailure(FailureCode::FileIoError);
    seek(here, SEEK_SET);
    return std::in_range<Int32>(end) ? static_cast<Int32>(end) : std::numeric_limits<Int32>::max();
}

void InputFile::Seek(Int32 position)
{
    static_cast<void>(handle());
    if (position < 1)
        throw RuntimeFailure(FailureCode::BadRecordNumber);
    seek(position - 1, SEEK_SET);
    buffer_.clear();
    taken_ = 0;
}

bool InputFile::Eof()
{
    fill();
    return taken_ == buffer_.size();
}

std::string InputFile::LineInput()
{
    if (Eof())
        throw RuntimeFailure(FailureCode::InputPastEndOfFile);
    std::string line;
    while (!Eof()) {
        const std::size_t end = buffer_.find_first_of("\r\n", taken_);
        line.append(buffer_, taken_, end == std::string::npos ? end : end - taken_);
        if (end == std::string::npos) {
            taken_ = buffer_.size();
            continue;
        }
        taken_ = end + 1;
        if (buffer_[end] == '\r' && !Eof() && buffer_[taken_] == '\n')
            ++taken_;
        break;
    }
    return line;
}

std::FILE* InputFile::handle() const
{
    if (!file_)
        throw RuntimeFailure(FailureCode::BadFileName);
    return file_.get();
}

void InputFile::seek(long offset, int origin)
{
    if (std::fseek(handle(), offset, origin) != 0)
        throw RuntimeFailure(FailureCode::FileIoError);
}

/// Sees to it that there is something in the buffer, unless the file is at its end.
void InputFile::fill()
{
    std::FILE* const file = handle();
    if (taken_ < buffer_.size())
        return;
    std::clearerr(file); // the file may have grown, or be readable again, since the last attempt
    buffer_.resize(kBlock);
    taken_ = 0;
    buffer_.resize(std::fread(buffer_.data(), 1, kBlock, file));
    if (buffer_.empty() && std::ferror(file))
        throw RuntimeFailure(FailureCode::FileIoError);
}

} // namespace kel
