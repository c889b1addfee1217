// SPDX-License-Identifier: MIT
#include "options/TestLine.h"

#include "drivers/common/PackedMarks.h"
#include "types/RuntimeFailure.h"

#include <algorithm>
#include <array>
#include <string>

namespace kel {

namespace {

using namespace std::string_view_literals;

// The last commands of the start of readers that take sheets by themselves from then on.
constexpr std::array kLastOfStart = {"\x12R7777I00E"sv,
                                     "\x1B"
                                     "FD\r"sv,
                                     "M8"sv};

// An EZData clears its path with them.
constexpr std::array kEject = {"EF", "ER"};

} // namespace

bool TestLine::movesSheet(std::string_view bytes) const
{
    if (feeds_ && std::ranges::find(kLastOfStart, bytes) != kLastOfStart.end())
        return true;
    return std::ranges::any_of(kEject, [&](const char* text) { return bytes == frameCommand(text); });
}

void TestLine::Control::PortOpen(Boolean value)
{
    inner().PortOpen(value);
    if (!value)
        return;
    line_.hasOpened_ = true;
    line_.hasAsked_ = false;
    line_.whenOpen_();
}

Int32 TestLine::Control::InBufferCount()
{
    const Int32 count = inner().InBufferCount();
    line_.hasHeard_ = line_.hasHeard_ || count > 0;
    return count;
}

std::string TestLine::Control::Input()
{
    std::string bytes = inner().Input();
    if (!bytes.empty()) {
        line_.hasHeard_ = true;
        line_.isAnswered_ = line_.isAnswered_ || line_.hasAsked_;
    }
    return bytes;
}

void TestLine::Control::Output(std::string_view bytes)
{
    if (line_.movesSheet(bytes)) {
        line_.hasWithheld_ = true;
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, "Withheld: a sheet would move.");
    }
    line_.hasAsked_ = true;
    inner().Output(bytes);
}

} // namespace kel
