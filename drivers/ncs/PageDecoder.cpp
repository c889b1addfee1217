// SPDX-License-Identifier: MIT
#include "drivers/ncs/PageDecoder.h"

#include "types/Text.h"

#include <utility>

namespace kel {

namespace {

constexpr Int32 kMostRows = 150;
constexpr Int16 kColumns = 48;

constexpr Byte kRowOfSide1 = 'a';
constexpr Byte kRowOfSide2 = 'b';
constexpr Byte kBarcodes = 'c';
constexpr Byte kNextBarcode = 'd';
constexpr Byte kRun = 0x15;
constexpr Int16 kRunCountBase = 0x40;
constexpr Byte kCarriageReturn = 0x0D;
constexpr Byte kLineFeed = 0x0A;

bool isLineEnd(Byte byte)
{
    return byte == kCarriageReturn || byte == kLineFeed;
}

} // namespace

PageDecoderNCS::PageDecoderNCS(ReadsTwoSides readsTwoSides)
    : readsTwoSides_(std::move(readsTwoSides)), sBarcodeArr_(1, 1)
{
    sides_[0].marks.ReDim(kMostRows, kColumns);
    if (readsTwoSides_())
        sides_[1].marks.ReDim(kMostRows, kColumns);
    sBarcodeArr_(1) = "?";
}

std::optional<PageDecoderNCS::RowFault> PageDecoderNCS::take(Byte byte)
{
    switch (eRun_) {
    case Run::Count:
        iNumCompress_ = static_cast<Int16>(byte - kRunCountBase);
        eRun_ = Run::Value;
        return std::nullopt;
    case Run::Value:
        eRun_ = Run::None;
        if (bInBarcode_)
            appendToBarcode(byte, iNumCompress_);
        else
            takePositions(byte);
        return std::nullopt;
    case Run::None: break;
    }

    if (byte == kRowOfSide1)
        return beginRow(1);
    if (byte == kRowOfSide2)
        return beginRow(2);
    if (byte == kBarcodes)
        beginBarcodes();
    else if (bInBarcode_)
        takeInBarcode(byte);
    else if (isLineEnd(byte))
        bDone_ = true;
    else if (byte == kRun)
        eRun_ = Run::Count;
    else {
        iNumCompress_ = 1;
        takePositions(byte);
    }
    return std::nullopt;
}

std::optional<PageDecoderNCS::RowFault> PageDecoderNCS::beginRow(int side)
{
    Side& here = sides_[side - 1];
    std::optional<RowFault> fault;
    if (iNumBytes_ != kColumns)
        fault = RowFault{side, iNumBytes_, here.timingMarks};
    iCurrentSide_ = side;
    here.timingMarks = checkedAdd(here.timingMarks, 1);
    iNumBytes_ = 0;
    return fault;
}

void PageDecoderNCS::beginBarcodes()
{
    // Barcodes from before a second marker stay where they are, until others take their places.
    iNumBarcodes_ = 1;
    sBarcodeArr_(1).clear();
    bInBarcode_ = true;
}

void PageDecoderNCS::takeInBarcode(Byte byte)
{
    if (isLineEnd(byte)) {
        // The entry that the last separator has opened goes.
        if (iNumBarcodes_ > 1) {
            --iNumBarcodes_;
            sBarcodeArr_.ReDimPreserve(iNumBarcodes_);
        }
        bDone_ = true;
    } else if (byte == kNextBarcode) {
        // A barcode that is followed by another carries two characters in front that are not part of it.
        std::string& sBarcode = sBarcodeArr_(iNumBarcodes_);
        sBarcode.erase(0, 2);
        iNumBarcodes_ = checkedAdd(iNumBarcodes_, 1);
        sBarcodeArr_.ReDimPreserve(iNumBarcodes_);
        sBarcodeArr_(iNumBarcodes_).clear();
    } else if (byte == kRun) {
        eRun_ = Run::Count;
    } else {
        appendToBarcode(byte, 1);
    }
}

void PageDecoderNCS::appendToBarcode(Byte byte, Int16 iCount)
{
    if (iCount > 0)
        sBarcodeArr_(iNumBarcodes_).append(static_cast<std::size_t>(iCount), static_cast<char>(byte));
}

void PageDecoderNCS::takePositions(Byte byte)
{
    iNumBytes_ = checkedAdd(iNumBytes_, iNumCompress_);
    const bool bStored = iCurrentSide_ == 1 || (iCurrentSide_ == 2 && readsTwoSides_());
    for (iCompressIndex_ = 1; bStored && iCompressIndex_ <= iNumCompress_; ++iCompressIndex_)
        sides_[iCurrentSide_ - 1].put(byte);
}

void PageDecoderNCS::Side::put(Byte position)
{
    if (position >= '0' && position <= '9')
        marks(row, column) = static_cast<Int16>(position - '0');
    else if (position >= 'A')
        marks(row, column) = static_cast<Int16>(position - 'A' + 10);
    ++column;
    if (column > kColumns) {
        marks(row, kColumns) = 0;
        column = 1;
        row = checkedAdd(row, 1);
    }
}

} // namespace kel
