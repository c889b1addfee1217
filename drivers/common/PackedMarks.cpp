// SPDX-License-Identifier: MIT
#include "drivers/common/PackedMarks.h"

namespace kel {

namespace {

constexpr Int32 kColumns = 12;
constexpr Byte kEmptyHalfRow = 0x20;
constexpr Int32 kLastColumnOfFirstByte = 12;
constexpr Int32 kLastColumnOfSecondByte = 6;

// From the highest column of a half row downwards.
constexpr Byte kMarkBits[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x40};

} // namespace

std::string frameCommand(const std::string& text)
{
    return "\x12\x1B" + text + "\x12" + "E";
}

PackedRows::PackedRows(Int32 rows, Int16 iMarkValue) : iSide1Arr_(rows, kColumns), iMarkValue_(iMarkValue) {}

void PackedRows::take(Byte byte)
{
    if (byte != kEmptyHalfRow) {
        Int32 lColumn = bRightByte_ ? kLastColumnOfFirstByte : kLastColumnOfSecondByte;
        for (const Byte bBit : kMarkBits) {
            if (byte & bBit)
                iSide1Arr_(iRow_, lColumn) = iMarkValue_;
            --lColumn;
        }
    }
    if (!bRightByte_)
        iRow_ = checkedAdd(iRow_, 1);
    bRightByte_ = !bRightByte_;
    lNumBytes_ = checkedAdd(lNumBytes_, 1);
}

Int16 PackedRows::completeRows() const
{
    return checkedSubtract(iRow_, 1);
}

} // namespace kel
