// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"
#include "simulators/scanning_systems/SekonicReplies.h"

#include <array>
#include <optional>

namespace kel {

/// A Sekonic reader on a serial line: SR-601, SR-607, SR-700-351, SR-700-352 (7 to 10), SR-410 (19), SR-430 (38).
/// Every command ends in a CR; 05, 10 and 13 are class bytes, and "/" in front addresses side 2.
///
///     18            reset: 06
///     05 "OM"       7 to 10: the emulation mode
///     05 "O"        7 to 10: options, the 6th character "1" with a rejecter
///     10 "DLx"      threshold, in the form of model and mode
///     13 "DDnn"     7 to 10: mark discrimination
///     10 "T" 0D "1" (19), 10 "T" 0D 02 "2" (38), 13 "15" (38)     start commands
///     10 "Q"        7 to 10: forgets the windows
///     [/] 10 "W" 0D 02 and six fields of two digits and "112"     7 to 10: loads a window
///     13 "BA00", "BA01", "BA10999n", "P10", "P3100"     arm barcode and printer for the next sheet
///     "?"           reads a sheet: side 2's status byte if there is a second side, then side 1's; "0" is good
///     [/] 05 "T"    timing marks: three digits, and more
///     13 "BA05"     a character, the barcode, a character; "?" and more without one
///     [/] 10 "ED001nnn"     the marks of a side down to a row
///     [/] 10 "R*"   the marks of a side's windows: the loaded ones, with 19 and 38 those of the form
///     13 "P32nnn", "P4n" text blank, "P2n"     print position, the text of a line, and its print
///     "?P"          how the print went, by the last byte; "?F" no print: both let the sheet go
///     13 "R05", "R04"     reject hopper, normal way
///
/// It refuses as the host's mistake: what the model does not know, anything before a reset, a threshold before the mode
/// is known, a mark discrimination that the last reply does not allow (its first character is above "1"), a sheet
/// before the threshold or, with 38, before 13 "15", a window without "Q" or with fields of another length, "R*"
/// without "Q", marks or counts or barcodes without a good sheet, barcodes and prints that were not armed for the
/// sheet, a text, a print or "?P" without a position, the second side of a one-sided reader, and a query before the
/// reply to the one before it is through.
///
/// Settings: `mode` (0), `rejecter` (true), `options` (what stands around the 6th character), `feed-ms`, `reset-reply`,
/// `empty-status` and `jam-status` (status codes; -1 is silence), `fault-side` (the side that has them, the other one
/// is good: 1, 2 or both, which it is without it), `print-status`, `two-sided` (whether the sheets have a status for a
/// second side; without it 8 and 10 do), `plain` (replies without blanks, zeros and further separators), `short-pages`
/// (a page ends with the last row of the sheet, whatever was asked for), `reply-lump` (how many bytes of a reply come
/// together; 1 without it, as they are on the wire, 0 is all of them), `options-lump` (the same for the reply to 05
/// "O", which a host takes in one look; 0 without it).
class SekonicSerial final : public Simulator {
public:
    explicit SekonicSerial(SimulatorOptions options);

    [[nodiscard]] const std::string& threshold() const noexcept { return threshold_; }
    [[nodiscard]] const std::vector<LoadedWindow>& windows(int side) const
    {
        return windows_.at(static_cast<std::size_t>(side - 1));
    }

private:
    enum class Block { None, StartCommand, Window };
    enum class FaultSide { Both, One, Two };

    void onByte(Byte byte) override;
    void onOpen() override;
    void onClose() override;
    void onLeftover() override;

    void learnWindows();
    void obey(std::string command);
    void block(const std::string& text);
    void reset();
    void plainQuery(const std::string& text);
    void query(const std::string& text, int side);
    void setUpOrRead(const std::string& text, int side);
    void setting13(const std::string& text);

    void takeThreshold(const std::string& text);
    void loadWindow(const std::string& text);
    void startRead();
    void takeSheet();
    void sendBarcode();
    void sendPage(const std::string& rows, int side);
    void sendWindows(int side);
    void printCommand(const std::string& text);
    void sendAway(SheetEvent event);

    void reply(std::string reply);
    void reply(std::string reply, Int32 lump);
    [[nodiscard]] std::string statusBytes(Int32 status) const;
    void demandSheet(const std::string& what);
    void demandPrint(const std::string& what);
    void unknown(const std::string& command);
    [[nodiscard]] bool isLarge() const;
    [[nodiscard]] bool hasTwoSides() const;
    [[nodiscard]] const MarkRows& side(int number) const { return number == 1 ? sheet().side1 : sheet().side2; }

    std::string begun_;
    Block block_ = Block::None;
    int blockSide_ = 1;

    bool started_ = false;
    bool startCommand_ = false;
    bool modeTold_ = false;
    bool extraSetting_ = false; // 13 "15" has come
    char lastReply_ = '0';      // its first character
    bool windowsCleared_ = false;
    bool goodSheet_ = false;
    std::string threshold_;
    std::array<std::vector<LoadedWindow>, 2> windows_;

    std::string barcodeArming_; // what has come of it for the next sheet
    std::string printArming_;
    bool barcodeArmed_ = false; // for the sheet that was read
    bool printArmed_ = false;
    std::optional<Int32> printPosition_;
    std::optional<std::pair<Int32, std::string>> printText_;

    Int32 mode_;
    bool rejecter_;
    std::string optionsReply_;
    Moment feedTime_;
    std::string resetReply_;
    Int32 emptyStatus_;
    Int32 jamStatus_;
    FaultSide faultSide_;
    std::string printStatus_;
    bool statusOfTwo_;
    ReplyStyle style_;
    bool shortPages_;
    Int32 replyLump_;
    Int32 optionsLump_;
    Moment repliedAt_{};
};

} // namespace kel
