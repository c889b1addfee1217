// SPDX-License-Identifier: MIT
#include "simulators/ezdata/PackedRows.h"

#include <array>
#include <stdexcept>

namespace kel {

namespace {

constexpr std::array<int, 6> kPositions = {0x01, 0x02, 0x04, 0x08, 0x10, 0x40};
constexpr int kSpare = 0x20;
constexpr int kEndOfSheet = 0x0D;
constexpr int kRefusal = 0x07;

char half(const MarkRows& rows, Int32 row, Int32 highestColumn, SpareBit spare)
{
    int bits = 0;
    Int32 column = highestColumn;
    for (const int position : kPositions) {
        if (markAt(rows, row, column) != 0)
            bits |= position;
        --column;
    }
    const bool odd = (row + highestColumn / 6) % 2 != 0;
    const bool set = spare == SpareBit::Set || (spare == SpareBit::Changing && odd);
    if (set || bits == 0 || bits == kEndOfSheet || bits == kRefusal)
        bits |= kSpare;
    return static_cast<char>(bits);
}

} // namespace

SpareBit spareBitFrom(const std::string& text)
{
    if (text == "changing")
        return SpareBit::Changing;
    if (text == "clear")
        return SpareBit::Clear;
    if (text == "set")
        return SpareBit::Set;
    throw std::invalid_argument("setting spare-bit=" + text + ": is neither changing, clear nor set");
}

std::string packedRows(const MarkRows& rows, SpareBit spare)
{
    std::string bytes;
    for (Int32 row = 1; row <= static_cast<Int32>(rows.size()); ++row) {
        bytes += half(rows, row, 12, spare);
        bytes += half(rows, row, 6, spare);
    }
    return bytes + '\r';
}

} // namespace kel
