// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>

namespace kel {

/// The component's truth value: 16 bits wide, True is -1 (all bits set) and False is 0.
/// Any value but 0 counts as true in a test; only a comparison with True asks for exactly -1.
class Boolean {
public:
    constexpr Boolean() noexcept = default;

    /// True or False; numbers and pointers are not truth values and do not convert.
    template <std::same_as<bool> T>
    constexpr Boolean(T value) noexcept : bits_(value ? std::int16_t{-1} : std::int16_t{0})
    {
    }

    /// A value of 16 bits, also one that is neither True nor False.
    [[nodiscard]] static constexpr Boolean fromBits(std::int16_t bits) noexcept
    {
        Boolean result;
        result.bits_ = bits;
        return result;
    }

    /// The value in 16 bits.
    [[nodiscard]] constexpr std::int16_t bits() const noexcept { return bits_; }
    /// False for 0, true for everything else.
    constexpr explicit operator bool() const noexcept { return bits_ != 0; }

    friend constexpr bool operator==(Boolean, Boolean) noexcept = default;
    /// Bit by bit: 1 and 2 are both true, and their conjunction is not.
    friend constexpr Boolean operator&(Boolean a, Boolean b) noexcept
    {
        return fromBits(static_cast<std::int16_t>(a.bits_ & b.bits_));
    }

private:
    std::int16_t bits_ = 0;
};

/// The two values that the component itself uses.
inline constexpr Boolean True = Boolean::fromBits(-1);
inline constexpr Boolean False = Boolean::fromBits(0);

static_assert(sizeof(Boolean) == 2);

} // namespace kel
