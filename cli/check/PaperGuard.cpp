// SPDX-License-Identifier: MIT
#include "cli/check/PaperGuard.h"

#include "cli/check/Dialects.h"
#include "platform/Platform.h"
#include "recording/Transcript.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>

namespace kel {

namespace {

using namespace std::string_view_literals;

// A session that is asked to stop has so long to do it by itself.
constexpr Moment kGrace = std::chrono::seconds(2);

/// What a command may begin with.
using Beginnings = std::span<const std::string_view>;

constexpr std::array kOpScan = {"s0"sv, "s1"sv, "e"sv, "r"sv, "\x0E"sv};
constexpr std::array kSekonic = {"\x18"sv,
                                 "\x05"sv,
                                 "\x10T"sv,
                                 "\x10"
                                 "DL"sv,
                                 "\x10Q"sv,
                                 "\x10W"sv,
                                 "/\x10W"sv,
                                 "\x13"
                                 "15"sv,
                                 "\x13"
                                 "DD"sv};
constexpr std::array kScanmark = {"\x1BSRST"sv, "\x1BQSTS"sv, "\x1BQ\x11STS"sv,
                                  "\x1B"
                                  "FRM="sv,
                                  "\x1BTHR="sv};
constexpr std::array kLink = {"T1\r"sv, "T2\r"sv,
                              "T\x11"
                              "2\r"sv};
constexpr std::array kGradeMaster = {"A1\r"sv, "S8\r"sv, "M3\r"sv, "S9\r"sv,
                                     "S\x11"
                                     "9\r"sv};
constexpr std::array kLine = {"R1"sv, "M6"sv, "I1"sv, "A9"sv, "R6"sv, "S1"sv, "M0"sv};
constexpr std::array kVmr = {"0"sv, "Q"sv, "D"sv, "G"sv, "E"sv, "+"sv, "-"sv, "9"sv};
constexpr std::array kEZData = {"\x12\x1BGETCONFIG\x12"
                                "E"sv,
                                "\x12\x1BGET\x11"
                                "CONFIG\x12"
                                "E"sv,
                                "\x12\x1BS\x12"
                                "E"sv,
                                "\x12\x1BV\x12"
                                "E"sv,
                                "\x12\x1B"
                                "D\x12"
                                "E"sv,
                                "\x12R7777\x12I00\x12"
                                "E"sv};
constexpr std::array kChatsworth = {"\x1BS"sv, "\x1BH"sv, "\x12R7777I00E"sv,
                                    "\x12\x1BV\x12"
                                    "E"sv,
                                    "\x12\x1B\x11V\x12"
                                    "E"sv};

Beginnings harmless(Dialect dialect)
{
    switch (dialect) {
    case Dialect::OpScan: return kOpScan;
    case Dialect::SekonicLarge:
    case Dialect::SekonicSmall: return kSekonic;
    case Dialect::Scanmark: return kScanmark;
    case Dialect::AppersonLink: return kLink;
    case Dialect::AppersonGradeMaster: return kGradeMaster;
    case Dialect::AppersonLine: return kLine;
    case Dialect::PeripheralDynamics: return kVmr;
    case Dialect::EZData: return kEZData;
    case Dialect::Chatsworth: break;
    }
    return kChatsworth;
}

/// Chatsworth readers that take a sheet by themselves once their start is done: the last command of it waits.
bool endsStartOfSelfFeeder(kelReaderType model, std::string_view bytes, std::string_view before)
{
    const bool probe = bytes.starts_with("\x12R7777I00E");
    return probe && (model == kelReaderTypeChatsworthOMR1100 || before.starts_with("\x1BHCD"));
}

} // namespace

bool movesNoPaper(kelReaderType model, std::string_view bytes, std::string_view before)
{
    const Dialect dialect = dialectOf(model).dialect;
    // After a change of its mode an OpScan may want to hear 0x11; otherwise that asks for a sheet.
    if (dialect == Dialect::OpScan && bytes == "\x11")
        return before.starts_with('e');
    if (endsStartOfSelfFeeder(model, bytes, before))
        return false;
    return bytes.empty() || std::ranges::any_of(harmless(dialect), [&](std::string_view beginning) {
               return bytes.starts_with(beginning);
           });
}

void PaperGuard::endIfStopped()
{
    if (!rules_.stopped || !rules_.stopped())
        return;
    const Moment now = platform().pump().now();
    stoppedAt_ = stoppedAt_.value_or(now);
    if (now - *stoppedAt_ > kGrace)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, "The check has ended this wait.");
}

Int32 PaperGuard::Control::InBufferCount()
{
    const Int32 count = inner().InBufferCount();
    if (count == 0)
        guard_.endIfStopped();
    return count;
}

void PaperGuard::Control::Output(std::string_view bytes)
{
    if (!guard_.rules_.paperMayMove && !movesNoPaper(guard_.rules_.model, bytes, guard_.before_)) {
        if (guard_.withheld_.empty())
            guard_.withheld_ = transcriptBytes(bytes);
        throw RuntimeFailure(FailureCode::InvalidProcedureCall,
                             "Withheld until sheets may move: " + transcriptBytes(bytes));
    }
    guard_.before_ = bytes;
    inner().Output(bytes);
}

} // namespace kel
