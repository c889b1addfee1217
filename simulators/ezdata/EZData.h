// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/ezdata/CommandFrames.h"
#include "simulators/ezdata/PackedRows.h"
#include "simulators/framework/Simulator.h"

namespace kel {

/// An EZData reader or a Chatsworth ACF100: framed commands, a stored configuration, packed mark bytes.
///
///     GETCONFIG     configuration of 22 characters, the last a CR, "G", CR
///     SETFLAGSxx    the byte of that hexadecimal number, "G", CR
///     SETTMCHn SETTHRESHn SETDECAYn   what follows the name, "G", CR; "?" for "G" where it is not one digit
///     CHECKSUM      "P", "G", CR; "?" for "G" without a change to seal
///     RESET         no reply, and silence; what is sealed counts from now on, what is not is forgotten
///     S             status byte, "G", CR: 0x01 a sheet in the path, 0x04 a jam, 0x10 ready
///     E             "G", CR, and after a while the page; "?", CR at an empty feeder
///     EF ER         sheet out to the reject hopper or the normal way: "G", CR; "?", CR without a sheet
///     V             the version, "G", CR
///     D             end of session: "G", CR
///     12 "R7777" 12 "I00" 12 "E"   the locate probe: "G", CR
///
/// It refuses as the host's mistake: anything else, a command before the reply to the one before it has been sent, or
/// while it restarts or carries a sheet to the reject hopper, a SET of what is set already, a CHECKSUM without a SET,
/// a SET or RESET or S after a SET that was not sealed or a seal that no RESET followed, an E without a status
/// query in the session, and anything but D while a page is under way.
///
/// Settings: `reply-ms`, `feed-ms` (from "E" to the page; a host looks after 500 ms), `reset-ms` and `hopper-ms` (how
/// long it hears nothing), `format`, `flags`, `timing`, `mode`, `threshold`, `decay` (the configuration at power-on),
/// `between` (four characters of the configuration without a meaning), `last-byte` (after "G" or "?"), `status`
/// (bits that always stand), `stranded` (sheets in the path at power-on), `version`, `spare-bit`.
class EZData final : public Simulator {
public:
    explicit EZData(SimulatorOptions options);

    /// The configuration as the reader would report it, without the CR.
    [[nodiscard]] std::string configuration() const;

private:
    struct Configuration {
        std::string flags;
        std::string timing;
        std::string threshold;
        std::string decay;
    };
    enum class Change { None, Set, Sealed };

    void onByte(Byte byte) override;
    void onOpen() override;
    void onClose() override;
    void onLeftover() override;

    void obey(const HostCommand& command);
    void framed(const std::string& text);
    void demandReadiness(const std::string& command);
    void reply(const std::string& text, bool taken = true);
    void replyWithStatus(const std::string& text);
    void set(const std::string& command);
    void seal();
    void restart();
    void reportStatus();
    void startRead();
    void takeSheet();
    void sendAway(SheetEvent event);

    CommandFrames frames_;
    std::string format_;
    std::string mode_;
    std::string between_;
    Configuration active_;
    Configuration changed_;
    Configuration sealed_;
    Change change_ = Change::None;

    bool statusAsked_ = false;
    bool feeding_ = false;
    bool sessionEnded_ = false;
    bool jammed_ = false;
    Int32 inPath_; // sheets in the path
    Byte status_;
    std::string lastByte_;
    std::string version_;
    SpareBit spareBit_;

    Moment replyTime_;
    Moment feedTime_;
    Moment resetTime_;
    Moment hopperTime_;
    Moment busyUntil_{};
    std::string busyWith_;
};

} // namespace kel
