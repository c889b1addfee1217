// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <optional>
#include <string>

namespace kel {

/// Something whole that the host of an EZData or Chatsworth reader has sent.
struct HostCommand {
    enum class Kind {
        Framed,      ///< 12 1B text 12 "E"
        LocateProbe, ///< 12 "R7777" 12 "I00" 12 "E"
        JoinedProbe, ///< 12 "R7777I00E"
        SetUp,       ///< 1B text 0D
        Single,      ///< a byte that begins none of them, as text
        Broken,      ///< what began as one of them and was not, as text
    };

    Kind kind{};
    std::string text = {};
};

/// Cuts the host's bytes into commands.
class CommandFrames {
public:
    /// The command that ends with this byte.
    [[nodiscard]] std::optional<HostCommand> take(Byte byte);

    /// Forgets what has begun.
    void clear() { begun_.clear(); }
    [[nodiscard]] bool empty() const noexcept { return begun_.empty(); }

private:
    [[nodiscard]] std::optional<HostCommand> finished() const;

    std::string begun_;
};

} // namespace kel
