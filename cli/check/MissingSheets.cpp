// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "cli/check/SheetFindings.h"
#include "dispatch/PaperCommands.h"

#include <algorithm>

// Why fewer sheets came than were put in: the reader's last replies show it.

namespace kel {

namespace {

using namespace std::string_view_literals;

/// The reader's last word on the state of its sheet path, as far as its dialect has one.
enum class PathState { Unknown, Empty, Fault };

PathState scanmarkPath(const Dialogue& dialogue)
{
    constexpr std::size_t kWholeStatus = 12;
    constexpr std::size_t kFlags = 8;
    constexpr char kFaults = 0x50;
    // The end of the session resets the reader: the last status before it counts.
    const Exchange* const status = dialogue.last("\x1BQSTS");
    const std::string reply = status ? status->reply() : "";
    if (reply.size() != kWholeStatus)
        return PathState::Unknown;
    return (reply[kFlags] & kFaults) != 0 ? PathState::Fault : PathState::Empty;
}

PathState opScanPath(const Dialogue& dialogue)
{
    constexpr char kFaults = 0x0F;
    const Exchange* const status = dialogue.last("s1");
    const std::string reply = status ? status->reply() : "";
    return reply.size() > 2 && (reply[2] & kFaults) != 0 ? PathState::Fault : PathState::Unknown;
}

PathState sekonicPath(const Dialogue& dialogue)
{
    constexpr char kNoSheet = '2';
    const Exchange* const status = dialogue.last("?\r");
    const std::string reply = status ? status->reply() : "";
    if (reply.empty() || reply.front() == '0')
        return PathState::Unknown;
    return reply.front() == kNoSheet ? PathState::Empty : PathState::Fault;
}

/// A reader that has taken the command to feed and sends nothing has its sheet somewhere.
PathState chatsworthPath(const Dialogue& dialogue)
{
    const Exchange* const fed = dialogue.last("\x1B"
                                              "F\r");
    const std::string reply = fed ? fed->reply() : "";
    if (reply.empty())
        return PathState::Unknown;
    return reply.front() == '0' ? PathState::Fault : PathState::Empty;
}

PathState ezDataPath(const Dialogue& dialogue)
{
    const Exchange* const read = dialogue.last("\x12\x1B"
                                               "E\x12"
                                               "E");
    return read && read->reply().starts_with('?') ? PathState::Empty : PathState::Unknown;
}

PathState pathOf(const SheetsSeen& seen)
{
    const Dialect dialect = dialectOf(seen.model).dialect;
    if (seen.behind && tellsJam(dialect, *seen.behind))
        return PathState::Fault;
    switch (dialect) {
    case Dialect::Scanmark: return scanmarkPath(seen.dialogue);
    case Dialect::OpScan: return opScanPath(seen.dialogue);
    case Dialect::SekonicLarge:
    case Dialect::SekonicSmall: return sekonicPath(seen.dialogue);
    case Dialect::Chatsworth: return chatsworthPath(seen.dialogue);
    case Dialect::EZData: return ezDataPath(seen.dialogue);
    default: return PathState::Unknown;
    }
}

/// A Sekonic that does not report a sheet, and yet reports its timing marks, has lost its status.
bool statusIsMissing(const SheetsSeen& seen)
{
    const Exchange* const status = seen.dialogue.last("?\r");
    return seen.sheets.empty() && status && status->arrivals.empty() && seen.behind && !seen.behind->back().empty() &&
           !seen.behind->back().starts_with("000");
}

/// Whether anything came upon the last command that moves paper; nothing if none was sent.
std::optional<bool> readIsAnswered(const SheetsSeen& seen)
{
    std::optional<bool> answered;
    std::string before;
    for (const Exchange& exchange : seen.dialogue.exchanges) {
        if (!movesNoPaper(seen.model, exchange.sent, before))
            answered = !exchange.arrivals.empty();
        before = exchange.sent;
    }
    return answered;
}

Cause causeOfFailure(const SheetsSeen& seen)
{
    // The library's own number: 20 07 and 25 07 are about the connection.
    const std::string number = std::to_string(seen.failures.front().number);
    return number.starts_with("2007") || number.starts_with("2507") ? Cause::SwitchedOff : Cause::Jam;
}

/// LF, two bytes a row, CR.
bool isOddPage(const std::string& reply)
{
    const std::size_t begin = reply.find('\n');
    return begin != std::string::npos && reply.ends_with('\r') && (reply.size() - begin) % 2 != 0;
}

} // namespace

bool missesXon(const SheetsSeen& seen, bool rowsAreMissing)
{
    if (seen.usb || dialectOf(seen.model).dialect != Dialect::PeripheralDynamics)
        return false;
    bool odd = false;
    for (const Exchange& exchange : seen.dialogue.exchanges) {
        const std::string reply = exchange.reply();
        if (reply.find_first_of("\x11\x13") != std::string::npos)
            return false;
        odd = odd || (exchange.sent == "8" && isOddPage(reply));
    }
    return odd || rowsAreMissing;
}

Cause causeOfMissing(const SheetsSeen& seen)
{
    if (tellsHangUp(seen.failures))
        return Cause::LineHungUp;
    if (seen.errors.any())
        return seen.errors.parity + seen.errors.framing > 0 ? Cause::Garbled : Cause::BytesLost;
    if (seen.behind && judgeReplies(dialectOf(seen.model).dialect, *seen.behind) == ReplyKind::Silence)
        return Cause::SwitchedOff;
    if (seen.swallowsXon || missesXon(seen, false))
        return Cause::BytesSwallowed;
    if (statusIsMissing(seen))
        return Cause::StatusShorter;
    switch (pathOf(seen)) {
    case PathState::Fault: return Cause::Jam;
    case PathState::Empty: break;
    case PathState::Unknown:
        if (!seen.failures.empty() && seen.usb)
            return causeOfFailure(seen);
        if (!seen.failures.empty() && readIsAnswered(seen) != false)
            return readIsAnswered(seen) ? Cause::Jam : Cause::Reported;
        break;
    }
    const bool oneShort = !seen.sheets.empty() && seen.sheets.size() + 1 == static_cast<std::size_t>(seen.wanted);
    return oneShort ? Cause::DoubleFeed : Cause::EmptyFeeder;
}

} // namespace kel
