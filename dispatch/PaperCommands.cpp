// SPDX-License-Identifier: MIT
#include "dispatch/PaperCommands.h"

#include "types/ModelTable.h"

#include <algorithm>
#include <array>
#include <span>

namespace kel {

namespace {

using namespace std::string_view_literals;

/// What a command may begin with.
using Beginnings = std::span<const std::string_view>;

constexpr std::array kOpScanCommands = {"s0"sv, "s1"sv, "e"sv, "r"sv, "\x0E"sv};
constexpr std::array kSekonicCommands = {"\x18"sv,
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
constexpr std::array kScanmarkCommands = {"\x1BSRST"sv, "\x1BQSTS"sv, "\x1BQ\x11STS"sv,
                                          "\x1B"
                                          "FRM="sv,
                                          "\x1BTHR="sv};
constexpr std::array kLinkCommands = {"T1\r"sv, "T2\r"sv,
                                      "T\x11"
                                      "2\r"sv};
constexpr std::array kGradeMasterCommands = {"A1\r"sv, "S8\r"sv, "M3\r"sv, "S9\r"sv,
                                             "S\x11"
                                             "9\r"sv};
constexpr std::array kLineCommands = {"R1"sv, "M6"sv, "I1"sv, "A9"sv, "R6"sv, "S1"sv, "M0"sv};
constexpr std::array kVmrCommands = {"0"sv, "Q"sv, "D"sv, "G"sv, "E"sv, "+"sv, "-"sv, "9"sv};
constexpr std::array kEZDataCommands = {"\x12\x1BGETCONFIG\x12"
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
constexpr std::array kChatsworthCommands = {"\x1BS"sv, "\x1BH"sv, "\x12R7777I00E"sv,
                                            "\x12\x1BV\x12"
                                            "E"sv,
                                            "\x12\x1B\x11V\x12"
                                            "E"sv};

struct HarmlessCommands {
    std::string_view name;
    Beginnings beginnings;
};

constexpr std::array kWires = std::to_array<HarmlessCommands>({
    {"AdvantageLink", kLinkCommands},
    {"GradeMaster", kGradeMasterCommands},
    {"BenchMark3000", kLineCommands},
    {"Advantage1200", kLineCommands},
    {"VMR138", kVmrCommands},
    {"EZData", kEZDataCommands},
    {"Chatsworth", kChatsworthCommands},
    {"SekonicSmall", kSekonicCommands},
    {"SekonicLarge", kSekonicCommands},
    {"SekonicLargeDuplex", kSekonicCommands},
    {"Scanmark", kScanmarkCommands},
    {"ScanmarkRaw", kScanmarkCommands},
    {"OpScan", kOpScanCommands},
    {kNoWire, {}},
});
static_assert(modelWithUnknown(&ModelRow::wire, kWires) == 0,
              "nobody knows what moves paper in the model of this number: it names a wire that kWires lacks");

/// Chatsworth readers that take a sheet by themselves once their start is done: the last command of it moves paper.
bool endsStartOfSelfFeeder(kelReaderType model, std::string_view bytes, std::string_view before)
{
    const bool probe = bytes.starts_with("\x12R7777I00E");
    return probe && (model == kelReaderTypeChatsworthOMR1100 || before.starts_with("\x1BHCD"));
}

} // namespace

bool movesNoPaper(kelReaderType model, std::string_view bytes, std::string_view before)
{
    const ModelRow* const row = modelRow(model);
    if (!row || endsStartOfSelfFeeder(model, bytes, before))
        return false;
    // After a change of its mode an OpScan may want to hear 0x11; otherwise that asks for a sheet.
    if (Wire("OpScan").isOf(model) && bytes == "\x11")
        return before.starts_with('e');
    return bytes.empty() ||
           std::ranges::any_of(entryNamed(kWires, row->wire)->beginnings,
                               [&](std::string_view beginning) { return bytes.starts_with(beginning); });
}

} // namespace kel
