// SPDX-License-Identifier: MIT
#pragma once

#include "TextNames.h"
#include "drivers/apperson/RawBlock.h"
#include "drivers/common/Dialogue.h"

#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// Whether a BenchMark 3000 has got the command to send sheets. From then on it sends one after the other by itself, so
/// the command goes out once for a run of sheets.
extern constinit thread_local Boolean bAPReaderStarted;

/// What is reported when an exchange fails, all under one title. Without a number a missing reply is reported in fixed
/// words.
struct ExchangeFaultsAP {
    TextNumber cancelled = text::kApStartRefused;
    std::optional<TextNumber> timedOut = text::kApStartUnanswered;
    TextNumber refused = text::kApStartRefused;
};

/// Whether a reply says that the reader has carried out its command. What follows the two letters says nothing.
[[nodiscard]] bool isOKAP(std::string_view sData);

/// How a reply is collected: a slow reader gets a pause to add to it.
inline constexpr CollectRules kReplyRulesAP = {.pauseWhenEmpty = true};

/// The last command of a procedure, and what has come upon it.
struct ExchangeAP {
    std::string scmd;
    ReplyBytes reply;

    KEL_TELLS(scmd, reply)
};

/// Waits for the reader's "OK". A cancel, too, is reported.
[[nodiscard]] bool awaitOKAP(ReaderContract& oReader, const char* source, ExchangeAP& exchange,
                             const ExchangeFaultsAP& faults = {}, CollectRules rules = kReplyRulesAP);

/// Sends a command and waits for the reader's "OK".
[[nodiscard]] bool exchangeAP(ReaderContract& oReader, const char* source, ExchangeAP& exchange, std::string_view scmd,
                              const ExchangeFaultsAP& faults = {}, CollectRules rules = kReplyRulesAP);

/// Takes the bytes of a block until its status byte; the reader may wait for its sheet as long as it likes. False when
/// the stop flag was set.
[[nodiscard]] bool collectBlockAP(ReaderContract& oReader, RawBlockAP& block);

} // namespace kel
