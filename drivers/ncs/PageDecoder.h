// SPDX-License-Identifier: MIT
#pragma once

#include "types/Arrays.h"

#include <functional>
#include <optional>

namespace kel {

/// Decodes the reply of an OpScan to the start command, byte by byte.
///
///   row      "a" (side 1) or "b" (side 2), then 48 positions
///   position a hexadecimal digit; a run of equal ones may come as 0x15, 0x40 + count, digit
///   barcodes "c", then texts with "d" between them; runs as above
///   end      CR or LF
///
/// "a", "b" and "c" are markers everywhere, also within a barcode; "d" outside the barcodes is a mark.
class PageDecoderNCS {
public:
    /// A row marker that came when the row before it did not hold 48 positions.
    struct RowFault {
        int side;                  ///< of the marker
        Int16 positions;           ///< received since the marker before
        Int16 rowsCompletedBefore; ///< rows of that side before this marker
    };

    /// Whether the sheet is read on two sides: asked at the start, when side 2 gets its room, and then with each of its
    /// positions, since the host may change it while the sheet comes. Otherwise rows of side 2 are only counted. A
    /// position of side 2 without room is failure 9.
    using ReadsTwoSides = std::function<bool()>;
    explicit PageDecoderNCS(ReadsTwoSides readsTwoSides);
    /// Without room for anything.
    PageDecoderNCS() = default;

    /// Takes the next byte; a row length fault is reported, and the decoding goes on.
    std::optional<RowFault> take(Byte byte);

    /// The reader has fallen silent within the barcodes, which ends the page. The entry opened last stays.
    void endBySilence() { bDone_ = true; }

    [[nodiscard]] bool isDone() const { return bDone_; }
    [[nodiscard]] bool isInBarcode() const { return bInBarcode_; }
    /// Whether the count byte or the value byte of a run is still to come.
    [[nodiscard]] bool isInRun() const { return eRun_ != Run::None; }

    [[nodiscard]] const MarkArray& side1() const { return sides_[0].marks; }
    [[nodiscard]] const MarkArray& side2() const { return sides_[1].marks; }
    /// Row markers seen.
    [[nodiscard]] Int16 timingMarks(int side) const { return sides_[side - 1].timingMarks; }
    /// From 1; a single "?" when the page held no barcodes.
    [[nodiscard]] const TextArray& barcodes() const { return sBarcodeArr_; }

    template <class Lines>
    void tellVariables(Lines& lines) const
    {
        const auto& [side1, side2] = sides_;
        lines.add("iSide1Arr, iSide1Row, iSide1Count, iTim1", side1.marks, side1.row, side1.column, side1.timingMarks);
        lines.add("iSide2Arr, iSide2Row, iSide2Count, iTim2", side2.marks, side2.row, side2.column, side2.timingMarks);
        lines.add("iCurrentSide, iNumBytes, iNumCompress, iCompressIndex, bInBarcode, iNumBarcodes, sBarcodeArr, bDone",
                  iCurrentSide_, iNumBytes_, iNumCompress_, iCompressIndex_, bInBarcode_, iNumBarcodes_, sBarcodeArr_,
                  bDone_);
    }

private:
    enum class Run { None, Count, Value };

    struct Side {
        MarkArray marks;
        Int16 row = 1;
        Int16 column = 1;
        Int16 timingMarks = 0;

        void put(Byte position);
    };

    std::optional<RowFault> beginRow(int side);
    void beginBarcodes();
    void takeInBarcode(Byte byte);
    void takePositions(Byte byte);
    void appendToBarcode(Byte byte, Int16 iCount);

    Side sides_[2];
    ReadsTwoSides readsTwoSides_;
    int iCurrentSide_ = 0;
    Int16 iNumBytes_ = 48; // so that the first row marker passes its check
    Run eRun_ = Run::None;
    Int16 iNumCompress_ = 0;
    Int16 iCompressIndex_ = 0;
    bool bInBarcode_ = false;
    bool bDone_ = false;
    Int16 iNumBarcodes_ = 0;
    TextArray sBarcodeArr_;
};

} // namespace kel
