// SPDX-License-Identifier: MIT
#include "drivers/apperson/ErrorTexts.h"

#include "TextNames.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

struct ErrorText {
    Int16 iErrCode;
    TextNumber message;
};

constexpr ErrorText kErrorTexts[] = {
    {4, text::kApError4},     {5, text::kApError5},          {6, text::kApError6},          {7, text::kApError7},
    {8, text::kApError8},     {9, text::kApError9},          {201, text::kApError201},      {202, text::kApError202},
    {203, text::kApError203}, {204, text::kApError204Or205}, {205, text::kApError204Or205}, {206, text::kApError206},
    {207, text::kApError207}, {208, text::kApError208},      {210, text::kApError210},      {211, text::kApError211},
};

} // namespace

TextNumber errorTextAP(Int16 iErrCode)
{
    const auto* row = std::ranges::find(kErrorTexts, iErrCode, &ErrorText::iErrCode);
    return row == std::end(kErrorTexts) ? text::kApErrorUnknown : row->message;
}

} // namespace kel
