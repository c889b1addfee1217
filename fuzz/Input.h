// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Numbers.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace kel {

/// What has to hold whatever the input is; the end of the process if it does not.
inline void demand(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
inline void demand(Boolean holds, const char* what)
{
    demand(static_cast<bool>(holds), what);
}

/// An input that is taken from its front; after its end come zeros.
class Input {
public:
    explicit Input(std::span<const Byte> bytes) : bytes_(bytes) {}
    Input(const Byte* data, std::size_t size) : bytes_(data, size) {}

    [[nodiscard]] bool empty() const { return bytes_.empty(); }
    [[nodiscard]] std::span<const Byte> rest() const { return bytes_; }
    [[nodiscard]] std::string_view text() const
    {
        return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
    }

    Byte byte() { return empty() ? Byte{0} : take(1).front(); }
    bool truth() { return (byte() & 1) != 0; }

    /// Some bytes; fewer at the end.
    std::span<const Byte> take(std::size_t count)
    {
        const auto taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }

    /// A number of 16 bits in two bytes.
    Int16 number16()
    {
        const Byte low = byte();
        return static_cast<Int16>(static_cast<std::uint16_t>(low | byte() << 8));
    }

    /// A number in one byte: a small one, or one of those at which sums and products run over.
    Int16 number()
    {
        constexpr Int16 kBounds[] = {-32768, -32767, -256, -255, -128, -49, 255, 256, 999, 1000, 16384, 32766, 32767};
        const Byte code = byte();
        const auto bound = static_cast<std::size_t>(255 - code);
        return bound < std::size(kBounds) ? kBounds[bound] : static_cast<Int16>(code - 10);
    }

private:
    std::span<const Byte> bytes_;
};

} // namespace kel
