// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/ErrorCodes.h"

#include "TextNames.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

struct ErrorText {
    Int32 lError;
    TextNumber message;
};

constexpr ErrorText kErrorTexts[] = {
    {0x01020005, text::kSrError01020005}, {0x20070000, text::kSrError20070000}, {0x25070001, text::kSrError25070001},
    {0x30080000, text::kSrError30080000}, {0x30080001, text::kSrError30080001}, {0x30080002, text::kSrError30080002},
    {0x30080003, text::kSrError30080003}, {0x35090000, text::kSrError35090000}, {0x35090001, text::kSrError35090001},
    {0x35090002, text::kSrError35090002}, {0x35090003, text::kSrError35090003}, {0x40110001, text::kSrError40110001},
    {0x40110002, text::kSrError40110002}, {0x40110003, text::kSrError40110003}, {0x40140000, text::kSrError40140000},
    {0x40140001, text::kSrError40140001}, {0x40140002, text::kSrError40140002}, {0x40120003, text::kSrError40120003},
    {0x41120003, text::kSrError41120003}, {0x42120003, text::kSrError42120003}, {0x40120004, text::kSrError40120004},
    {0x41120004, text::kSrError41120004}, {0x42120004, text::kSrError42120004}, {0x45140003, text::kSrError45140003},
    {0x45140004, text::kSrError45140004}, {0x45140005, text::kSrError45140005}, {0x45140006, text::kSrError45140006},
};

constexpr Int32 kQuietStop = 0x40110000;
constexpr Int32 kSheetReadAllTheSame[] = {0x40120003, 0x41120003, 0x42120003};

} // namespace

FeedResultSR feedResultSR(Int32 lError)
{
    if (lError == 0 || std::ranges::find(kSheetReadAllTheSame, lError) != std::end(kSheetReadAllTheSame))
        return FeedResultSR::SheetRead;
    return lError == kQuietStop ? FeedResultSR::QuietStop : FeedResultSR::Failed;
}

TextNumber errorMessageSR(Int32 lError)
{
    const auto* row = std::ranges::find(kErrorTexts, lError, &ErrorText::lError);
    return row == std::end(kErrorTexts) ? text::kSrErrorUnknown : row->message;
}

Int32 shownErrorSR(Int32 lError)
{
    Int32 shown = 0;
    for (int shift = 28; shift >= 0; shift -= 4) {
        const auto digit = static_cast<Int32>(static_cast<std::uint32_t>(lError) >> shift & 0xFU);
        if (digit > 9)
            break;
        shown = shown * 10 + digit;
    }
    return shown;
}

} // namespace kel
