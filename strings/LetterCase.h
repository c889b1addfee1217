// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// A text in UTF-8 (or, where it is none, in Latin-1) with every letter in its folded form: two texts that differ only
/// in the case of letters, of any alphabet, are the same folded.
[[nodiscard]] std::u16string folded(std::string_view utf8);

} // namespace kel
