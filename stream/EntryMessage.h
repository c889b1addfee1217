// SPDX-License-Identifier: MIT
#pragma once

#include "store/EntryTexts.h"
#include "stream/StreamLink.h"

#include <string>
#include <string_view>

namespace kel {

/// The version of the messages that this program sends; it reads this one and no other.
inline constexpr int kMessageVersion = 1;

/// An entry as a message: its subject is ROOT.sheet.STATION.READER or ROOT.report.STATION.READER.
[[nodiscard]] StreamMessage messageOf(const EntryTexts& entry, const std::string& root);
[[nodiscard]] StreamMessage messageOf(const Entry& entry, const std::string& root);

/// The entry in a message, without an id. JsonRefusal if there is none.
[[nodiscard]] Entry entryIn(std::string_view content);

} // namespace kel
