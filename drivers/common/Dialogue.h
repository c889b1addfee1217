// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"
#include "failure/TellsVariables.h"

#include <array>
#include <limits>
#include <optional>
#include <string>

namespace kel {

/// Opens the line with the reader's handshaking, speed, parity, data bits and stop bits: on the port that is given, or
/// on the reader's own.
void openLine(ReaderContract& oReader, std::optional<Int16> iPort = std::nullopt);

/// How a wait for a reply ended.
enum class Wait { Reply, Cancelled, TimedOut };

/// What a wait looks at while nothing comes. A driver states only what differs from the usual wait.
struct WaitRules {
    Int32 minimumCount = 1;  ///< the wait ends when so many characters are there
    bool cancellable = true; ///< whether `CancelScan` ends it
    bool timed = true;       ///< whether `tmrScan` is started and ends it
};

/// The wait that all serial drivers share. Starts the timer; until enough characters have arrived, it lets events
/// run, then looks at the stop flag and then at the timer. So a reply wins over both, and a cancel over a time-out.
/// A reply turns the timer off; a cancel leaves it running.
[[nodiscard]] Wait waitForReply(ReaderContract& oReader, WaitRules rules = {});

/// Empties the input side, taking and dropping `Input` until nothing waits.
void drainInput(ReaderContract& oReader);

/// The same for slow devices: whenever the buffer has just run empty it sleeps `SleepTime` and looks again.
void drainInputWithPauses(ReaderContract& oReader);

/// One character of the input as a byte; failure 9 when none waits, as of the first element of an empty array.
/// `InputLen` must be 1.
[[nodiscard]] Byte takeByte(ReaderContract& oReader, SourceLocation where = SourceLocation::current());

/// How a reply is collected character by character.
struct CollectRules {
    bool pauseWhenEmpty = false; ///< sleep `SleepTime` whenever the buffer has just run empty, and look again
    Int32 mostCharacters = std::numeric_limits<Int32>::max();
};

/// Sets `InputLen` to 1 and takes what waits as one text. What has come before a failure stays in `sData`.
void collectText(ReaderContract& oReader, std::string& sData, CollectRules rules = {});

/// A reply that is collected byte by byte.
struct ReplyBytes {
    std::string sData;
    std::array<Byte, 1> bDataArr{}; ///< the last of its bytes
    Int32 iByteCount = 0;           ///< how many have been taken

    KEL_TELLS(sData, bDataArr, iByteCount)
};

/// The same with each character taken as `takeByte` does: one that does not come is failure 9.
void collectBytes(ReaderContract& oReader, ReplyBytes& reply, CollectRules rules = {});

} // namespace kel
