// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace kel {

/// Takes out the marks that a terminal puts into its input (PARMRK):
///
///     FF 00 xx    xx came with a wrong parity bit; 00 for xx is a break
///     FF FF       the character FF
///
/// The first becomes "?", the second one character. A mark may come in pieces.
class MarkedInput {
public:
    /// Decodes in place; how many characters there are then.
    [[nodiscard]] std::size_t decode(char* bytes, std::size_t count) noexcept;

    /// How many characters have become "?".
    [[nodiscard]] std::uint64_t replaced() const noexcept { return replaced_; }

private:
    enum class State { Plain, Escape, Wrong };

    State state_ = State::Plain;
    std::uint64_t replaced_ = 0;
};

} // namespace kel
