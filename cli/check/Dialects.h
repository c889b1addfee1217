// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// A way in which readers are asked how they are. Each has a question that moves no paper and changes nothing.
enum class Dialect {
    OpScan,
    SekonicLarge,
    SekonicSmall,
    Scanmark,
    AppersonLink,
    AppersonGradeMaster,
    AppersonLine,
    PeripheralDynamics,
    EZData,
    Chatsworth,
};

/// How a reply to a dialect's question looks.
enum class ReplyKind {
    Silence,
    Good,
    Longer,  ///< good, but for a last byte that comes twice
    Shorter, ///< good, but for a last byte that is missing
    Other,
};

/// Some bytes to send, and how long to wait for what comes upon them; a reply ends the wait sooner.
struct Ask {
    std::string bytes;
    Int32 milliseconds = 300;
    bool replies = true; ///< whether a reply comes upon them at all
};

struct DialectEntry {
    Dialect dialect;
    std::string_view name; ///< "an EZData"
    kelReaderType model;   ///< that stands for it
    std::vector<Ask> asks;
    std::string_view expected; ///< the reply in words
    /// The same question with a byte 0x11 in the middle, which a reader does not know and a port that takes the byte
    /// away makes good; none where 0x11 means something.
    std::vector<Ask> withXon;
};

/// All of them. What means something to others too comes late: 0x12 sends a sheet out of an OpScan.
[[nodiscard]] std::span<const DialectEntry> dialects();
[[nodiscard]] const DialectEntry& entryOf(Dialect dialect);

/// The dialect of a model with a line.
[[nodiscard]] const DialectEntry& dialectOf(kelReaderType model);

/// What a reply to each of the asks of a dialect comes to.
[[nodiscard]] ReplyKind judgeReplies(Dialect dialect, const std::vector<std::string>& replies);

/// Whether the reader says that it is in the middle of something.
[[nodiscard]] bool tellsUnfinished(Dialect dialect, const std::vector<std::string>& replies);

/// Whether the reader says that its sheet path has a fault.
[[nodiscard]] bool tellsJam(Dialect dialect, const std::vector<std::string>& replies);

} // namespace kel
