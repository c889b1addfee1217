// SPDX-License-Identifier: MIT
#include "failure/CommandLineSplit.h"

#include <algorithm>

namespace kel {

namespace {

constexpr std::size_t kBufferLength = 512;

/// What follows a position; nothing where the text ends before it.
std::string_view behind(std::string_view text, std::size_t position)
{
    return text.substr(std::min(position, text.size()));
}

} // namespace

CommandLineParts splitCommandLine(std::string_view sCommandLine)
{
    const std::string_view sBuffer = sCommandLine.substr(0, kBufferLength);
    if (!sBuffer.starts_with('"')) {
        const std::size_t end = std::min(sBuffer.find(' '), sBuffer.size());
        return {std::string(sBuffer.substr(0, end)), std::string(behind(sBuffer, end + 1))};
    }
    const std::string_view sInside = sBuffer.substr(1);
    const std::size_t end = std::min(sInside.find('"'), sInside.size());
    std::string_view sArguments = behind(sInside, end + 1);
    sArguments.remove_prefix(std::min(sArguments.find_first_not_of(' '), sArguments.size()));
    return {std::string(sInside.substr(0, end)), std::string(sArguments)};
}

} // namespace kel
