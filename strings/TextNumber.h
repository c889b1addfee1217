// SPDX-License-Identifier: MIT
#pragma once

#include "TextNumbers.h" // generated from the texts themselves

#include "types/Numbers.h"

#include <algorithm>

namespace kel {

/// The number of a text. A number that has no text in the languages' sources does not compile. Code uses the names in
/// `kel::text` (TextNames.h).
class TextNumber {
public:
    consteval TextNumber(int number) : value_(number)
    {
        if (!std::binary_search(kTextNumbers.begin(), kTextNumbers.end(), Int32{number}))
            throw "this number has no text in strings/texts";
    }

    [[nodiscard]] constexpr Int32 value() const noexcept { return value_; }
    friend constexpr bool operator==(TextNumber, TextNumber) noexcept = default;

private:
    Int32 value_;
};

} // namespace kel
