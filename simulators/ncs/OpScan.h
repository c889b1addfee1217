// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"
#include "simulators/ncs/OpScanReply.h"

namespace kel {

/// An NCS OpScan or iNSIGHT reader.
///
///     s0            report of 51 characters: the driver status letter at index 34, the scan mode letter at 48
///     s1            status of 4 characters, whose second and third hold the bits of what went wrong with the sheet
///     e letter 04   scan mode i, e, t, d, w or s; no reply. From any mode to w, and from w to any
///     11            after a mode command, when the status letter is A or I: confirms it; otherwise reads a sheet
///     r             begins a session; no reply
///     1 dd 04       where to print; no reply
///     2 text 04     what to print, with a blank at its end; no reply
///     12, 1B 12     eject, reject; no reply; both clear what went wrong
///     0E            ends a session at a reader without feeder; no reply
///
/// It refuses as the host's mistake: any other byte, a mode change past w, a mode command that is not confirmed, a read
/// in another mode than i, without a session, while a sheet is under way or without a status query after the sheet
/// before it, a status query while a reply is outstanding, print or eject without a sheet, and a print text without a
/// position, and a position without a text. At an empty feeder the reply comes when a sheet does; a jam is a reply
/// without rows and the bit 08 of the third status character. A sheet stays until it is ejected or the next one is
/// read; that, too, is in the log.
///
/// Settings: `mode` (the letter at power-on, i; with a capital its reports have capitals), `driver-status` (the status
/// letter, N), `late-reports` (this many reports after a change still have the old mode), `status1` and `status2` (bits
/// that stand at power-on; with 0x40 in both, which means nothing), `status-length` and `report-length` (4 and 51 at
/// the least), `reply-ms` (from s0 and s1 to the report), `feed-ms` (from 11 to the reply), `compress`, `alternate`,
/// `end` (crlf or silence), `barcode-prefix`: as OpScanFormat has them; `feeder` (true: 0E is a mistake; false: closing
/// a session without it is one).
class OpScan final : public Simulator {
public:
    explicit OpScan(SimulatorOptions options);

    /// Bits that stand in the status from now on, until the sheet is ejected or rejected or a session begins.
    void statusBits(Byte status1, Byte status2);

    /// The scan mode's letter.
    [[nodiscard]] char mode() const noexcept { return mode_; }

private:
    enum class Stage { None, UnderWay, Sent, Asked };

    void onByte(Byte byte) override;
    void onClose() override;
    void onSheetPut() override;
    void onLeftover() override;

    void beginCommand(Byte byte);
    void finishQuery(Byte byte);
    void finishText();
    void changeMode(const std::string& letter);
    void printPosition(const std::string& digits);
    void print(std::string text);
    void forgetPrint();
    void reportMode();
    void reportStatus();
    void startSession();
    void go();
    void startRead();
    void takeSheet();
    void sendAway(SheetEvent event, const char* command);
    void endSession();
    void letSheetGo();
    [[nodiscard]] bool replyOutstanding() const;
    [[nodiscard]] bool demandsGo() const;

    // A command whose first byte is here: s and 1B take one byte more, e, 1 and 2 all up to 04.
    char begun_ = 0;
    std::string argument_;

    bool session_ = false;
    Stage stage_ = Stage::None;
    bool waitingForSheet_ = false;
    std::optional<Int32> printPosition_;

    bool capitals_;
    char mode_;
    char modeBefore_;
    bool unconfirmed_ = false; // a mode command waits for its 11
    char driverStatus_;
    Int32 lateReports_;
    Int32 reportsStillLate_ = 0;
    Byte status1_;
    Byte status2_;
    std::size_t statusLength_;
    std::size_t reportLength_;
    Moment replyTime_;
    Moment feedTime_;
    OpScanFormat format_;
    std::string feeder_;
};

} // namespace kel
