// SPDX-License-Identifier: MIT
#include "cli/check/Dialects.h"

#include "types/ModelTable.h"
#include "types/Text.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace kel {

namespace {

using namespace std::string_literals;

constexpr char kCr = '\r';
constexpr char kAck = 0x06;
constexpr std::size_t kReportLength = 51;
constexpr std::size_t kModeAt = 48;
constexpr std::size_t kDriverStatusAt = 34;
constexpr std::size_t kStatusLength = 12;
constexpr std::size_t kConfigurationLength = 24;
constexpr std::size_t kShortStatusLength = 3;
constexpr std::size_t kOkayLength = 4;

std::string framed(const std::string& text)
{
    return "\x12\x1B" + text + "\x12" + "E";
}

struct WireDialect {
    std::string_view name;
    Dialect dialect;
};

constexpr std::array kWires = std::to_array<WireDialect>({
    {"AdvantageLink", Dialect::AppersonLink},
    {"GradeMaster", Dialect::AppersonGradeMaster},
    {"BenchMark3000", Dialect::AppersonLine},
    {"Advantage1200", Dialect::AppersonLine},
    {"VMR138", Dialect::PeripheralDynamics},
    {"EZData", Dialect::EZData},
    {"Chatsworth", Dialect::Chatsworth},
    {"SekonicSmall", Dialect::SekonicSmall},
    {"SekonicLarge", Dialect::SekonicLarge},
    {"SekonicLargeDuplex", Dialect::SekonicLarge},
    {"Scanmark", Dialect::Scanmark},
    {"ScanmarkRaw", Dialect::Scanmark},
    {"OpScan", Dialect::OpScan},
    {kNoWire, Dialect::OpScan}, // nobody asks on a line that is not there
});
static_assert(modelWithUnknown(&ModelRow::wire, kWires) == 0,
              "nobody knows how to ask the model of this number how it is: it names what kWires lacks");

const std::vector<DialectEntry>& table()
{
    static const std::vector<DialectEntry> entries = {
        {Dialect::OpScan, "an OpScan", kelReaderTypeNCSOpScan5, {{"s0"}}, "a report of 51 bytes", {}},
        {Dialect::SekonicLarge,
         "a Sekonic SR-600 or SR-700",
         kelReaderTypeScanningSystemsSR601,
         {{"\x18\r"}, {"\x05O\r"}},
         "06, and the options",
         {{"\x18\r"}, {"\x05\x11O\r"}}},
        {Dialect::SekonicSmall, "a Sekonic SR-400", kelReaderTypeScanningSystemsSR410, {{"\x18\r"}}, "06", {}},
        {Dialect::Scanmark,
         "a Scanmark",
         kelReaderTypeScantronScanMark5500,
         {{"\x1BSRST\r"}, {"\x1BQSTS\r"}},
         "CR, and a status of 12 characters",
         {{"\x1BSRST\r"}, {"\x1BQ\x11STS\r"}}},
        {Dialect::AppersonLink,
         "an Apperson Advantage Link",
         kelReaderTypeAppersonAdvantageLink,
         {{"T2\r"}},
         "\"OK\" and its end of line",
         {{"T\x11"
           "2\r"}}},
        {Dialect::AppersonGradeMaster,
         "an Apperson GradeMaster",
         kelReaderTypeAppersonGradeMaster,
         {{"S9\r"}},
         "\"OK\" and its end of line",
         {{"S\x11"
           "9\r"}}},
        {Dialect::AppersonLine,
         "an Apperson BenchMark 3000 or Advantage 1200",
         kelReaderTypeAppersonBenchMark3000,
         {{"R1"}},
         "\"OK\" and its end of line",
         {}},
        {Dialect::PeripheralDynamics,
         "a VMR138",
         kelReaderTypePDIVMR138,
         {{"0", 500, false}, {"Q"}, {"9", 50, false}},
         "a status of 3 bytes",
         {}},
        {Dialect::EZData,
         "an EZData",
         kelReaderTypeNCSEZData,
         {{framed("GETCONFIG")}, {framed("S")}},
         "a configuration of 24 bytes",
         {{framed("GET\x11"
                  "CONFIG")}}},
        {Dialect::Chatsworth,
         "a Chatsworth",
         kelReaderTypeChatsworthACF200,
         {{framed("V")}},
         "a version that ends in \"G\" CR",
         {{framed("\x11V")}}},
    };
    return entries;
}

ReplyKind ofLength(const std::string& reply, std::size_t usual)
{
    if (reply.size() == usual)
        return ReplyKind::Good;
    if (reply.size() == usual + 1 && reply[usual] == reply[usual - 1])
        return ReplyKind::Longer;
    return reply.size() == usual - 1 ? ReplyKind::Shorter : ReplyKind::Other;
}

bool isPrintable(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

bool isLetterOf(std::string_view letters, char letter)
{
    return letters.find(static_cast<char>(std::tolower(static_cast<unsigned char>(letter)))) != std::string_view::npos;
}

ReplyKind judgeReport(const std::string& reply)
{
    const bool fits = reply.size() > kModeAt && isLetterOf("ietdws", reply[kModeAt]) &&
                      std::isalpha(static_cast<unsigned char>(reply[kDriverStatusAt])) != 0;
    if (!fits)
        return ReplyKind::Other;
    const ReplyKind kind = ofLength(reply, kReportLength);
    return kind == ReplyKind::Other && reply.size() > kReportLength ? ReplyKind::Good : kind;
}

ReplyKind judgeScanmark(const std::string& reply)
{
    const bool fits = reply.size() > 2 && isPrintable(reply.substr(0, 2)) && isLetterOf("012", reply[1]);
    return fits ? ofLength(reply, kStatusLength) : ReplyKind::Other;
}

ReplyKind judgeConfiguration(const std::string& reply)
{
    constexpr std::size_t kLetterAt = kConfigurationLength - 2;
    const bool fits = reply.size() > kLetterAt && reply[kLetterAt - 1] == kCr && reply[kLetterAt] == 'G' &&
                      isPrintable(std::string_view(reply).substr(0, kLetterAt - 1));
    return fits ? ofLength(reply, kConfigurationLength) : ReplyKind::Other;
}

ReplyKind judgeVersion(const std::string& reply)
{
    const std::size_t letter = reply.rfind('G');
    if (letter == std::string::npos || !isPrintable(std::string_view(reply).substr(0, letter)))
        return ReplyKind::Other;
    const std::string end = reply.substr(letter);
    return end == "G\r"     ? ReplyKind::Good
           : end == "G\r\r" ? ReplyKind::Longer
           : end == "G"     ? ReplyKind::Shorter
                            : ReplyKind::Other;
}

ReplyKind judgeOkay(const std::string& reply)
{
    if (!reply.starts_with("OK"))
        return ReplyKind::Other;
    const ReplyKind kind = ofLength(reply, kOkayLength);
    return kind == ReplyKind::Other ? ReplyKind::Good : kind; // what follows "OK" means nothing
}

ReplyKind judgeSekonic(const std::vector<std::string>& replies)
{
    const bool reset = replies.front().ends_with(kAck) && replies.front().size() <= 2;
    const bool rest = replies.size() < 2 || isPrintable(replies.back());
    return reset && rest ? ReplyKind::Good : ReplyKind::Other;
}

} // namespace

std::span<const DialectEntry> dialects()
{
    return table();
}

const DialectEntry& entryOf(Dialect dialect)
{
    return *std::ranges::find(table(), dialect, &DialectEntry::dialect);
}

const DialectEntry& dialectOf(kelReaderType model)
{
    const ModelRow* row = modelRow(model);
    return entryOf(row ? entryNamed(kWires, row->wire)->dialect : Dialect::OpScan);
}

ReplyKind judgeReplies(Dialect dialect, const std::vector<std::string>& replies)
{
    if (std::ranges::all_of(replies, [](const std::string& reply) { return reply.empty(); }))
        return ReplyKind::Silence;
    switch (dialect) {
    case Dialect::OpScan: return judgeReport(replies.front());
    case Dialect::SekonicLarge: return replies.back().empty() ? ReplyKind::Other : judgeSekonic(replies);
    case Dialect::SekonicSmall: return judgeSekonic(replies);
    case Dialect::Scanmark: return replies.front() == "\r" ? judgeScanmark(replies.back()) : ReplyKind::Other;
    case Dialect::AppersonLink:
    case Dialect::AppersonGradeMaster:
    case Dialect::AppersonLine: return judgeOkay(replies.front());
    case Dialect::PeripheralDynamics:
        return replies.size() > 1 ? ofLength(replies[1], kShortStatusLength) : ReplyKind::Other;
    case Dialect::EZData: return judgeConfiguration(replies.front());
    case Dialect::Chatsworth: break;
    }
    return judgeVersion(replies.front());
}

bool tellsUnfinished(Dialect dialect, const std::vector<std::string>& replies)
{
    constexpr char kSheetUnderWay = 0x20;
    switch (dialect) {
    case Dialect::OpScan: return replies.front().size() > kModeAt && !isLetterOf("iw", replies.front()[kModeAt]);
    case Dialect::PeripheralDynamics:
        return replies.size() > 1 && replies[1].size() > 1 && (replies[1][1] & kSheetUnderWay) != 0;
    case Dialect::EZData:
        // Flags 03 and timing channel 80 are what every start stores, if they are otherwise.
        return replies.front().size() >= kConfigurationLength - 1 &&
               (replies.front().substr(3, 2) != "03" || replies.front().substr(6, 2) != "80");
    default: return false;
    }
}

bool tellsJam(Dialect dialect, const std::vector<std::string>& replies)
{
    constexpr char kEZDataFault = 0x04;
    constexpr char kVmrFaults = 0x43;
    switch (dialect) {
    case Dialect::PeripheralDynamics:
        return replies.size() > 1 && replies[1].size() > 1 && (replies[1][1] & kVmrFaults) != 0;
    case Dialect::EZData: return replies.size() > 1 && !replies[1].empty() && (replies[1][0] & kEZDataFault) != 0;
    default: return false;
    }
}

} // namespace kel
