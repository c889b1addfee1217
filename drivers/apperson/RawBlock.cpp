// SPDX-License-Identifier: MIT
#include "drivers/apperson/RawBlock.h"

#include "types/Text.h"

namespace kel {

namespace {

constexpr Int32 kFirstByteOfRow2 = 15;

constexpr Int32 kIdentifierLength = 10;
constexpr Int32 kFirstErrorDigit = 12;
constexpr Int32 kErrorDigits = 3;
constexpr Int32 kFirstRowByte = 15;
constexpr Int32 kChoices = 5;

std::string textOf(const RawBlockAP& block, Int32 first, Int32 count)
{
    std::string text;
    for (Int32 k = first; k < first + count; ++k)
        text += static_cast<char>(block(k));
    return text;
}

} // namespace

void setMarksAdvantageLinkAP(MarkArray& iSide1Arr, const RawBlockAP& block)
{
    for (Int32 i = 1; i <= iSide1Arr.columns(); ++i)
        iSide1Arr(1, i) = block(i);
    Int32 k = kFirstByteOfRow2;
    for (Int32 i = 2; i <= iSide1Arr.rows(); ++i) {
        for (Int32 j = 1; j <= iSide1Arr.columns(); ++j, ++k)
            iSide1Arr(i, j) = block(k);
    }
}

std::string identifierGradeMasterAP(const RawBlockAP& block)
{
    return textOf(block, 1, kIdentifierLength);
}

Int16 errorNumberGradeMasterAP(const RawBlockAP& block)
{
    return CInt(Val(textOf(block, kFirstErrorDigit, kErrorDigits)));
}

void setMarksGradeMasterAP(MarkArray& iSide1Arr, const RawBlockAP& block, Int16 iThreshold, Byte& bValue)
{
    for (Int32 i = 1; i <= iSide1Arr.rows(); ++i) {
        bValue = block(kFirstRowByte + i - 1);
        for (Int32 j = 1; j <= kChoices; ++j) {
            if (bValue & (1 << (j - 1)))
                iSide1Arr(i, j) = iThreshold;
        }
    }
}

} // namespace kel
