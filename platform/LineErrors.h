// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

#include <cstdint>
#include <string>

namespace kel {

/// Errors of the characters on a line.
struct LineErrors {
    std::uint64_t parity = 0;  ///< characters with a wrong parity bit, which arrive as "?"
    std::uint64_t framing = 0; ///< characters without a proper stop bit
    std::uint64_t overrun = 0; ///< times that characters were lost because they were not fetched in time

    /// Whether there was any.
    [[nodiscard]] bool any() const noexcept { return parity + framing + overrun > 0; }

    /// The errors of two lines together.
    friend LineErrors operator+(LineErrors a, const LineErrors& b) noexcept
    {
        return {a.parity + b.parity, a.framing + b.framing, a.overrun + b.overrun};
    }
    friend bool operator==(const LineErrors&, const LineErrors&) = default;
};

/// The errors in words: "2 parity errors, 1 framing error".
[[nodiscard]] KEL_PUBLIC std::string lineErrorsText(const LineErrors& errors);

/// A serial control that counts them, as the reader's own does:
///
///     const kel::Reference<kel::Carrier> carrier = reader.fComm();
///     auto* const counting = dynamic_cast<kel::CountsLineErrors*>(&carrier->mscComm());
///
/// A host's own control need not count them.
class KEL_PUBLIC CountsLineErrors {
public:
    virtual ~CountsLineErrors() = default;

    /// All since the control was made, on whatever lines it was open.
    [[nodiscard]] virtual LineErrors lineErrors() = 0;
};

} // namespace kel
