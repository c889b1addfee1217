// SPDX-License-Identifier: MIT
#include "platform/LineErrors.h"

namespace kel {

namespace {

void append(std::string& text, std::uint64_t count, const char* what)
{
    if (count == 0)
        return;
    text += text.empty() ? "" : ", ";
    text += std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

std::string lineErrorsText(const LineErrors& errors)
{
    std::string text;
    append(text, errors.parity, "parity error");
    append(text, errors.framing, "framing error");
    append(text, errors.overrun, "overrun");
    return text;
}

} // namespace kel
