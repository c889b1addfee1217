// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kel::host {

struct Enumerator {
    std::string_view name;
    Int32 value;
};

/// An enumeration as a person may write its members: "kelReaderFlowControlHardware" or "Hardware".
struct Enumeration {
    std::string_view name;
    std::span<const Enumerator> members;

    /// The name without the enumeration's name before it.
    [[nodiscard]] std::string_view shortName(const Enumerator& member) const { return member.name.substr(name.size()); }

    /// The number for either name of a member, in any case of letters.
    [[nodiscard]] std::optional<Int32> valueOf(std::string_view wanted) const;

    [[nodiscard]] std::vector<std::string> names() const;
};

[[nodiscard]] const Enumeration& readerTypes();
[[nodiscard]] const Enumeration& baudRates();
[[nodiscard]] const Enumeration& dataBits();
[[nodiscard]] const Enumeration& flowControls();
[[nodiscard]] const Enumeration& recognitionTypes();

} // namespace kel::host
