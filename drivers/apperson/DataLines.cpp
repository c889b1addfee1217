// SPDX-License-Identifier: MIT
#include "drivers/apperson/DataLines.h"

#include "types/Text.h"

namespace kel {

namespace {

constexpr Byte kCarriageReturn = 13;
constexpr Byte kLineFeed = 10;
constexpr Int16 kLongestWord = 4;

} // namespace

LineEndAP BenchMarkLineAP::take(Byte byte)
{
    eEnd_ = endOf(byte);
    return eEnd_;
}

LineEndAP BenchMarkLineAP::endOf(Byte byte)
{
    fields_.take(byte, False);
    if (byte == kCarriageReturn)
        bEOF_ = true;
    if (!bEOF_ || byte != kLineFeed)
        return LineEndAP::None;
    if (fields_.iCharCount() > kLongestWord)
        return LineEndAP::Sheet;
    if (equalNoCase(Left(fields_.sData(), 2), "Z1"))
        return LineEndAP::NoMoreSheets;
    fields_.countAnew();
    fields_.dropText();
    bEOF_ = false;
    return LineEndAP::None;
}

bool Advantage1200LineAP::take(Byte byte, Boolean bReaderGrade)
{
    fields_.take(byte, bReaderGrade);
    bPageRead_ = bEOF_ && byte == kLineFeed;
    if (!bPageRead_)
        bEOF_ = byte == kCarriageReturn;
    return bPageRead_;
}

void Advantage1200LineAP::next()
{
    bPageRead_ = false;
    fields_.countAnew();
    fields_.numberQuestionsAnew();
    oDataDict_.RemoveAll();
}

} // namespace kel
