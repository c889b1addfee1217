// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// Something that goes wrong on purpose, at byte n of what the reader sends or at the n-th sheet that it feeds; both
/// count from 1. With both, the byte is counted from the feeding of that sheet.
struct Fault {
    enum class Kind {
        Drop,   ///< the byte is lost
        Garble, ///< the byte is changed; `value` is what it is exclusive-ored with
        Split,  ///< a pause of `value` ms before the byte
        Drip,   ///< from the byte on, each comes `value` ms later than the one before it
        Late,   ///< the reply that holds the byte begins `value` ms later
        Silent, ///< neither the byte nor any after it
        Jam,    ///< the sheet is stuck in the transport
        Empty,  ///< the feeder is empty when the sheet's turn comes
        Unplug, ///< the reader is gone: after the byte before, or when the sheet is fed
    };

    Kind kind{};
    Int32 value = 0;
    std::optional<Int32> byte = {};
    std::optional<Int32> sheet = {};

    friend bool operator==(const Fault&, const Fault&) = default;
};

/// A fault from its text: `drop@byte=120`, `late=2500@sheet=1`, `garble=85@sheet=2,byte=5`. Without a place it is
/// byte 1. Throws std::invalid_argument whose text names the words that are known.
[[nodiscard]] Fault parseFault(std::string_view text);

/// The text of a fault, as `parseFault` takes it.
[[nodiscard]] std::string toText(const Fault& fault);

} // namespace kel
