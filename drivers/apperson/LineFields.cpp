// SPDX-License-Identifier: MIT
#include "drivers/apperson/LineFields.h"

#include "types/Text.h"

#include <limits>

namespace kel {

namespace {

using enum FieldUseAP;

//   1 .. 12     17 .. 21   27 .. 39   40 .. 52    53 .. 65   66 .. 69     120 ..
//   Student ID  Page 1 ID  Test ID    School ID   Class ID   Error Code   answers
constexpr FieldEndAP kFieldsBenchMark3000[] = {
    {12, Store, "Student ID"}, {16, Discard, ""},         {21, Store, "Page 1 ID"},
    {26, Discard, ""},         {39, Store, "Test ID"},    {52, Store, "School ID"},
    {65, Store, "Class ID"},   {69, Store, "Error Code"}, {118, Discard, ""},
};

//   1 .. 10     11            15 .. 18     19 .. 23   24 .. 28   34 ..
//   Student ID  Test Version  Essay Score  Page 1 ID  Page 2 ID  answers
constexpr FieldEndAP kFieldsAdvantage1200[] = {
    {10, StoreTrimmed, "Student ID"},
    {11, Store, "Test Version"},
    {14, Discard, ""},
    {18, StoreIfGraded, "Essay Score"},
    {23, Store, "Page 1 ID"},
    {28, StoreUnlessZeros, "Page 2 ID"},
    {32, Discard, ""},
};

} // namespace

constinit const LineLayoutAP kLayoutBenchMark3000AP = {kFieldsBenchMark3000, 120, std::numeric_limits<Int16>::max(),
                                                       false};
constinit const LineLayoutAP kLayoutAdvantage1200AP = {kFieldsAdvantage1200, 34, 10000, true};

void LineFieldsAP::take(Byte byte, Boolean bReaderGrade)
{
    iCharCount_ = checkedAdd<Int16>(iCharCount_, 1);
    if (iCharCount_ > layout_.mostBytes)
        throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
    if (layout_.keepsBytes)
        keep(byte);
    if (byte != ',')
        sData_ += static_cast<char>(byte);

    if (nextField_ < layout_.fields.size() && layout_.fields[nextField_].position == iCharCount_)
        endField(layout_.fields[nextField_++], bReaderGrade);
    else if (byte == ',' && iCharCount_ >= layout_.firstAnswer)
        endAnswer();
}

void LineFieldsAP::countAnew()
{
    iCharCount_ = 0;
    nextField_ = 0;
}

void LineFieldsAP::endField(const FieldEndAP& field, Boolean bReaderGrade)
{
    switch (field.use) {
    case Discard: break;
    case Store: oDataDict_.Add(field.key, sData_); break;
    case StoreTrimmed: oDataDict_.Add(field.key, Trim(sData_)); break;
    case StoreIfGraded:
        if (bReaderGrade)
            oDataDict_.Add(field.key, sData_);
        break;
    case StoreUnlessZeros:
        if (!equalNoCase(sData_, "0000"))
            oDataDict_.Add(field.key, sData_);
        break;
    }
    sData_.clear();
}

void LineFieldsAP::endAnswer()
{
    // The letters that are marked for one question, with a tab between them.
    sTempData_.clear();
    const auto lLetters = static_cast<Int32>(sData_.size());
    for (iCtr_ = 1; iCtr_ <= lLetters; ++iCtr_) {
        if (iCtr_ > 1)
            sTempData_ += '\t';
        sTempData_ += Mid(sData_, iCtr_, 1);
    }
    if (!sTempData_.empty())
        oDataDict_.Add(Int32{iDataLines_}, sTempData_);
    iDataLines_ = checkedAdd<Int16>(iDataLines_, 1);
    sData_.clear();
}

void LineFieldsAP::keep(Byte byte)
{
    const auto at = static_cast<std::size_t>(iCharCount_) - 1;
    if (at >= bytes_.size())
        bytes_.resize(at + 1);
    bytes_[at] = static_cast<char>(byte);
}

TextArray LineFieldsAP::keptBytes() const
{
    TextArray kept(1, layout_.mostBytes);
    for (std::size_t at = 0; at < bytes_.size(); ++at)
        kept.elements()[at] = bytes_[at];
    return kept;
}

} // namespace kel
