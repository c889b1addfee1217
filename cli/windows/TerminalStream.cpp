// SPDX-License-Identifier: MIT
#include "cli/windows/TerminalStream.h"

#include "host/OutputFile.h"

#include <algorithm>
#include <string_view>

namespace kel {

namespace {

std::size_t lengthOfLetter(unsigned char firstByte)
{
    if (firstByte >= 0xF0)
        return 4;
    if (firstByte >= 0xE0)
        return 3;
    return firstByte >= 0xC0 ? 2 : 1;
}

/// How many bytes there are without a last letter of which more have to come.
std::size_t lengthOfWholeLetters(std::string_view text)
{
    for (std::size_t back = 1; back <= std::min<std::size_t>(text.size(), 3); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        const bool continues = (byte & 0xC0) == 0x80;
        if (!continues)
            return lengthOfLetter(byte) > back ? text.size() - back : text.size();
    }
    return text.size();
}

} // namespace

TerminalStream::TerminalStream(std::ostream& stream, int descriptor) : stream_(stream), descriptor_(descriptor)
{
    if (host::isTerminal(descriptor))
        before_ = stream_.rdbuf(this);
}

TerminalStream::~TerminalStream()
{
    if (!before_)
        return;
    stream_.flush();
    stream_.rdbuf(before_);
}

bool TerminalStream::write()
{
    const std::size_t length = lengthOfWholeLetters(waiting_);
    const bool written = length == 0 || host::writeText(descriptor_, {waiting_.data(), length}) >= 0;
    waiting_.erase(0, length);
    return written;
}

TerminalStream::int_type TerminalStream::overflow(int_type byte)
{
    if (traits_type::eq_int_type(byte, traits_type::eof()))
        return traits_type::not_eof(byte);
    const char text = traits_type::to_char_type(byte);
    return xsputn(&text, 1) == 1 ? byte : traits_type::eof();
}

std::streamsize TerminalStream::xsputn(const char* text, std::streamsize count)
{
    const std::lock_guard lock(mutex_);
    waiting_.append(text, static_cast<std::size_t>(count));
    const bool lineEnds = waiting_.find('\n') != std::string::npos;
    return !lineEnds || write() ? count : 0;
}

int TerminalStream::sync()
{
    const std::lock_guard lock(mutex_);
    return write() ? 0 : -1;
}

} // namespace kel
