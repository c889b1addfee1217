// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"

namespace kel {

/// A Peripheral Dynamics VMR138: one-character commands, a status of three characters, marks as bits of 12 columns.
///
///     0         start of session              no reply
///     Q         status                        a character without meaning, status byte 1, status byte 2
///     D G E     demanded by the bits 0x10 and 0x04 of status byte 1, and 0x08 of status byte 2; no reply
///     + -       threshold one step down, one up; reply: where it stands then, as two hexadecimal digits
///     8         read a sheet                  0A, left and right byte of each row from the last to the first, 0D
///     9         end of the page that was sent, otherwise end of the session; no reply
///     3 4       reject, eject; both clear the faults 0x02, 0x01 and 0x40 of status byte 1; no reply
///
/// It refuses as the host's mistake: any other byte, everything before "0", "D", "G" or "E" without their bits, bits
/// left unanswered at the start, a step up before the first query, a step or a read without a status query, and a
/// second "8" while a sheet is under way or its page not ended.
///
/// Settings: `threshold` (0xC5 at power-on), `status1` and `status2` (bits that stand at power-on), `feed-ms` (from "8"
/// to the page reply), `noise` (bytes before a page reply, in the notation of transcripts), `high-bits` (the two bits
/// of a row byte that mean nothing, 0 to 3; without it they change from byte to byte).
class VMR138 final : public Simulator {
public:
    explicit VMR138(SimulatorOptions options);

    /// Bits that stand in the status bytes from now on, beside that of a sheet under way.
    void statusBits(Byte status1, Byte status2);

    [[nodiscard]] Int32 threshold() const noexcept { return threshold_; }

private:
    enum class Session { Off, On };
    enum class Page { None, UnderWay, Sent };

    void onByte(Byte byte) override;
    void onClose() override;
    void onSheetPut() override;
    void onLeftover() override;

    void startSession();
    void reportStatus();
    void takeBit(char command, Byte& status, Byte bit);
    void stepThreshold(char command);
    void startRead();
    void takeSheet();
    void endPage();
    void sendAway(SheetEvent event);
    void demandNoBits(const char* command);

    [[nodiscard]] std::string pageReply() const;
    [[nodiscard]] char rowByte(Int32 row, Int32 firstColumn) const;

    Session session_ = Session::Off;
    Page page_ = Page::None;
    bool waitingForSheet_ = false;

    Int32 threshold_;
    bool thresholdAsked_ = false;
    Byte status1_;
    Byte status2_;
    bool statusFresh_ = false; // asked for since the session began or the last read
    bool firstStatus_ = true;  // the next status is the first of the session
    std::string owed_;         // commands that the first status has demanded and that have not come

    Moment feedTime_;
    std::string noise_;
    Int32 highBits_;
};

} // namespace kel
