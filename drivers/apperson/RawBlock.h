// SPDX-License-Identifier: MIT
#pragma once

#include "types/Arrays.h"

#include <array>
#include <string>

namespace kel {

/// The block of bytes that stands for a sheet, numbered from 1. Its last byte is the status: the first that reaches the
/// limit. The status byte is kept after the others, so that a short block shows it instead of a mark.
class RawBlockAP {
public:
    /// `mostBytes` is how many bytes there is room for; one more is failure 9.
    RawBlockAP(Int32 mostBytes, Byte statusLimit) : bDataArr_(0, mostBytes), statusLimit_(statusLimit) {}

    void take(Byte byte)
    {
        bDataArr_(i_) = byte;
        if (byte < statusLimit_)
            ++i_;
        else
            bPageRead_ = true;
    }

    [[nodiscard]] bool isComplete() const { return bPageRead_; }
    [[nodiscard]] Byte status() const { return bDataArr_(i_); }
    /// A byte by its number; 0 for one that did not come, failure 9 beyond the room.
    [[nodiscard]] Byte operator()(Int32 index) const { return bDataArr_(index); }

    /// A dump also shows the received bytes as a text, and the last one separately.
    template <class Lines>
    void tellVariables(Lines& lines) const
    {
        const Int32 last = bPageRead_ ? i_ : i_ - 1;
        const auto& bytes = bDataArr_.elements();
        const std::string sOutput(bytes.begin() + 1, bytes.begin() + 1 + last);
        const std::array<Byte, 1> bTempArr{bDataArr_(last)};
        lines.add("bDataArr, bTempArr, bPageRead, sOutput", bDataArr_, bTempArr, bPageRead_, sOutput);
    }

private:
    Array1<Byte> bDataArr_;
    Int32 i_ = 1;
    Byte statusLimit_;
    bool bPageRead_ = false;
};

/// Advantage Link: bytes 0 to 199 are marks, 200 is a good end and all above are error codes.
///
///     1 .. 12   13 14   15 .. 26   27 .. 38  ...  status      (a form of 12 columns)
///     row 1     -       row 2      row 3
///
/// Row 2 begins at byte 15 whatever the number of columns.
inline constexpr Byte kStatusAdvantageLinkAP = 200;
[[nodiscard]] inline RawBlockAP newBlockAdvantageLinkAP()
{
    return {1200, kStatusAdvantageLinkAP};
}

/// Fills in the marks as the reader sent them. Rows that lie beyond the block's room are failure 9.
void setMarksAdvantageLinkAP(MarkArray& iSide1Arr, const RawBlockAP& block);

/// GradeMaster: 217 is a good end and all above are error codes.
///
///     1 .. 10      11   12 .. 14       15     16    ...  status
///     identifier   -    error number   row 1  row 2
inline constexpr Byte kStatusGradeMasterAP = 217;
[[nodiscard]] inline RawBlockAP newBlockGradeMasterAP()
{
    return {300, kStatusGradeMasterAP};
}

/// The identifier, and what stands in its place on a sheet that was not read or that has none.
[[nodiscard]] std::string identifierGradeMasterAP(const RawBlockAP& block);
inline constexpr const char* kErrorIdentifierGradeMasterAP = "Error     ";
inline constexpr const char* kBlankIdentifierGradeMasterAP = "Blank ID# ";

/// The error number in the block; 0 when there are no digits.
[[nodiscard]] Int16 errorNumberGradeMasterAP(const RawBlockAP& block);

/// Sets the marks: a byte a row, bit 0x01 is column 1 and bit 0x10 is column 5; the higher bits mean nothing. A mark
/// outside the array's columns is failure 9. `bValue` is the byte of the last row.
void setMarksGradeMasterAP(MarkArray& iSide1Arr, const RawBlockAP& block, Int16 iThreshold, Byte& bValue);

} // namespace kel
