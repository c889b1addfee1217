// SPDX-License-Identifier: MIT
#include "simulators/ncs/OpScanReply.h"

#include <algorithm>
#include <string_view>

namespace kel {

namespace {

constexpr Int32 kColumns = 48;
constexpr char kRun = 0x15;
constexpr std::size_t kCountBase = 0x40;
constexpr std::size_t kLongestRun = 0x3F;
constexpr std::size_t kShortestRun = 4; // three bytes encode a run

char digitOf(Int16 value)
{
    return value >= 0 && value <= 15 ? "0123456789ABCDEF"[value] : '0';
}

std::string written(std::string_view text, const OpScanFormat& format)
{
    if (!format.compressed)
        return std::string(text);
    std::string bytes;
    while (!text.empty()) {
        const std::size_t equal = std::min({text.find_first_not_of(text.front()), text.size(), kLongestRun});
        if (equal < kShortestRun)
            bytes.append(text.substr(0, equal));
        else
            bytes += {kRun, static_cast<char>(kCountBase + equal), text.front()};
        text.remove_prefix(equal);
    }
    return bytes;
}

std::string rowReply(char marker, const MarkRows& side, std::size_t row, const OpScanFormat& format)
{
    if (row >= side.size())
        return {};
    std::string digits;
    for (Int32 column = 1; column <= kColumns; ++column)
        digits += digitOf(markAt(side, static_cast<Int32>(row) + 1, column));
    return marker + written(digits, format);
}

std::string barcodeReply(const std::vector<std::string>& barcodes, const OpScanFormat& format)
{
    if (barcodes.empty())
        return {};
    std::string bytes = "c";
    for (std::size_t index = 0; index < barcodes.size(); ++index) {
        const bool separated = !format.silentEnd || index + 1 < barcodes.size();
        bytes += written((separated ? format.barcodePrefix : "") + barcodes[index], format) + (separated ? "d" : "");
    }
    return bytes;
}

} // namespace

std::string opScanReply(const SimulatedSheet& sheet, const OpScanFormat& format)
{
    std::string bytes;
    if (format.alternating) {
        for (std::size_t row = 0; row < std::max(sheet.side1.size(), sheet.side2.size()); ++row)
            bytes += rowReply('a', sheet.side1, row, format) + rowReply('b', sheet.side2, row, format);
    } else {
        for (std::size_t row = 0; row < sheet.side1.size(); ++row)
            bytes += rowReply('a', sheet.side1, row, format);
        for (std::size_t row = 0; row < sheet.side2.size(); ++row)
            bytes += rowReply('b', sheet.side2, row, format);
    }
    bytes += barcodeReply(sheet.barcodes, format);
    return format.silentEnd && !sheet.barcodes.empty() ? bytes : bytes + "\r\n";
}

} // namespace kel
