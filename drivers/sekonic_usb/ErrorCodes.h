// SPDX-License-Identifier: MIT
#pragma once

#include "strings/TextNumber.h"

namespace kel {

/// What the library's last error says about the sheet that was fed.
enum class FeedResultSR {
    SheetRead, ///< no error, or one of three after which the sheet can be read all the same
    QuietStop, ///< no sheet, and no failure either: the session stops without a report
    Failed,
};

[[nodiscard]] FeedResultSR feedResultSR(Int32 lError);

/// The message for an error code of the library; unknown codes share one.
[[nodiscard]] TextNumber errorMessageSR(Int32 lError);

/// The number under which a code is shown: its hexadecimal text read as a decimal number, so that 0x40120003 shows as
/// 40120003. It is cut at the first letter digit, and is 0 if the text begins with one.
[[nodiscard]] Int32 shownErrorSR(Int32 lError);

} // namespace kel
