// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// How many letters have to be added, removed or changed to make one text the other, whatever the case of letters.
[[nodiscard]] std::size_t editDistance(std::string_view a, std::string_view b);

/// The names that come nearest to what was asked for, the nearest first, at most `count` of them; those that are
/// clearly farther away than the first are left out.
[[nodiscard]] std::vector<std::string> nearestNames(std::string_view wanted, const std::vector<std::string>& names,
                                                    std::size_t count = 3);

/// The nearest names as the half of a sentence: "the nearest is a", "the nearest are a and b".
[[nodiscard]] std::string nearestListed(const std::vector<std::string>& nearest);

/// Names as a person lists them: "a", "a or b", "a, b or c".
[[nodiscard]] std::string listed(const std::vector<std::string>& names, std::string_view lastLink = "or");

} // namespace kel
