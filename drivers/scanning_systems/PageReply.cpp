// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/PageReply.h"

#include <string_view>

namespace kel {

namespace {

constexpr Byte kBlank = ' ';
constexpr Byte kRowEnd = '\r';

// The SR-430's names of the columns from 1 on.
constexpr std::string_view kSR430Columns = "9876543210XYABC";

} // namespace

ColumnSS columnSS(ColumnLettersSS letters, Byte character, Int16 columnBefore)
{
    if (letters == ColumnLettersSS::Upwards)
        return {.column = static_cast<Int16>(character - '0' + 1)};
    const std::size_t at = kSR430Columns.find(static_cast<char>(character));
    if (at != std::string_view::npos)
        return {.column = static_cast<Int16>(at + 1)};
    return {.column = columnBefore, .exists = character < ':' || character > '>'};
}

PageStepSS PageReplySS::take(MarkArray& marks, Byte byte, ColumnLettersSS letters)
{
    if (awaits_ == Awaits::Value) {
        marks(iRowIndex_, iColIndex_) = static_cast<Int16>(byte - '0');
        awaits_ = Awaits::Element;
        return PageStepSS::ElementDone;
    }
    if (awaits_ == Awaits::Element && byte == kBlank) {
        awaits_ = Awaits::ElementBehindBlank;
        return PageStepSS::ElementOpen;
    }
    return takeElement(byte, letters);
}

PageStepSS PageReplySS::takeElement(Byte byte, ColumnLettersSS letters)
{
    if (byte == kRowEnd) {
        iRowIndex_ = checkedAdd(iRowIndex_, 1);
        awaits_ = Awaits::Element;
        return PageStepSS::ElementDone;
    }
    const ColumnSS column = columnSS(letters, byte, iColIndex_);
    iColIndex_ = column.column;
    awaits_ = Awaits::Value;
    return column.exists ? PageStepSS::ElementOpen : PageStepSS::WrongColumn;
}

} // namespace kel
