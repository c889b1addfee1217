#include "drivers/apperson/ErrorTexts.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

struct ErrorText {
    Int16 iErrCode;
    TextNumber message;
};

constexpr ErrorText kErrorTexts[] = {
    {4, 202},   {5, 204},   {6, 206},   {7, 208},   {8, 210},   {9, 212},   {201, 214}, {202, 216},
    {203, 218}, {204, 220}, {205, 220}, {206, 222}, {207, 224}, {208, 226}, {210, 228}, {211, 230},
};
constexpr TextNumber kUnknownErrorText = 232;

} // namespace

TextNumber errorTextAP(Int16 iErrCode)
{
    const auto* row = std::ranges::find(kErrorTexts, iErrCode, &ErrorText::iErrCode);
    return row == std::end(kErrorTexts) ? kUnknownErrorText : row->message;
}

} // namespace kel
