// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kel {

// Texts are in UTF-8 inside the component. The system takes them in UTF-16, or in the ANSI code page of the user.

/// What UTF-16 cannot be, and what the code page does not have, becomes a replacement character.
[[nodiscard]] std::wstring wideText(std::string_view utf8);
[[nodiscard]] std::string utf8Text(std::wstring_view wide);
[[nodiscard]] std::string ansiText(std::string_view utf8);
[[nodiscard]] std::string utf8FromAnsi(std::string_view ansi);
[[nodiscard]] std::wstring wideFromAnsi(std::string_view ansi);
[[nodiscard]] std::string ansiFromWide(std::wstring_view wide);

/// The system's words for one of its errors, without a line end: "Access is denied."
[[nodiscard]] std::string systemErrorText(unsigned long error);

} // namespace kel
