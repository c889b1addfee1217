#include "drivers/sekonic_usb/ErrorCodes.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

struct ErrorText {
    Int32 lError;
    TextNumber message;
};

constexpr ErrorText kErrorTexts[] = {
    {0x01020005, 498}, {0x20070000, 500}, {0x25070001, 502}, {0x30080000, 506}, {0x30080001, 508}, {0x30080002, 510},
    {0x30080003, 512}, {0x35090000, 514}, {0x35090001, 516}, {0x35090002, 518}, {0x35090003, 520}, {0x40110001, 522},
    {0x40110002, 524}, {0x40110003, 526}, {0x40140000, 528}, {0x40140001, 530}, {0x40140002, 532}, {0x40120003, 542},
    {0x41120003, 544}, {0x42120003, 546}, {0x40120004, 548}, {0x41120004, 550}, {0x42120004, 552}, {0x45140003, 534},
    {0x45140004, 536}, {0x45140005, 538}, {0x45140006, 540},
};

constexpr TextNumber kUnknownErrorText = 554;

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
    return row == std::end(kErrorTexts) ? kUnknownErrorText : row->message;
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
