// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"
#include "simulators/scantron/ScanmarkForm.h"

namespace kel {

/// A reader of the Scanmark family: text commands between ESC and CR, a form loaded before the first read, one byte a
/// cell.
///
///     SRST            forgets the form and all faults                  CR
///     THR= n          threshold; Scantron 8000 and 8400 only           CR
///     FRM=FS ...      begins a form; FRM=DK, FRM=MC, FRM=LS as in ScanmarkForm         CR
///     QSTS            12 characters of status; position 9: 40 and 10 faults, 01 a sheet is ready
///     READ 5 Y [E]    a byte for each cell of the form, and CR
///     EJCT A , EJCT C to the stacker, to the reject hopper             CR
///     PRN$ 1 Y text   prints on the sheet                              CR
///     PRN$ 1 N        does not print; precedes EJCT C          CR
///
/// A cell is the character "0" with the mark's value added; on the 8000 and the 8400 it is the value itself, where 13,
/// which would end the reply, goes out as 12. With several forms the sheets take them in turn, from the first after
/// the loading. FRM=MC is known to the 8000 and 8400 alone, EJCT to the 2000, 2250, 2500, 4000, 5500 and ES 2800.
/// A sheet that was read stays until it is ejected or the next one is read; that, too, is in the log.
///
/// It refuses as the host's mistake, with "?" instead of CR: unknown commands, those that the model lacks, a definition
/// that is outside a form or does not fit it, a form without an end, eject or print without a sheet, a print of more
/// than 125 characters. A mistake too: bytes outside a command, anything before the first SRST, a command while a reply
/// is outstanding (but not SRST, and not EJCT after PRN$ N), EJCT C without PRN$ N. A read without a form or without a
/// status that announced a sheet gets no answer. A read at an empty feeder is answered when a sheet comes; a jam is an
/// end without cells and the bit 0x40.
///
/// Settings: `status` (the 12 characters in the notation of transcripts; bit 0x01 of position 9 is the feeder's all the
/// same), `reply-ms` (from any other command to its reply), `feed-ms` (from READ to its reply), `ready-ms` (how long
/// after a read the next sheet is ready), `end-after` (the end comes after so many cells), `end` (false: never),
/// `prn-n-reply` (false: PRN$ 1 N is not answered).
class Scanmark final : public Simulator {
public:
    explicit Scanmark(SimulatorOptions options);

    /// A character of the status, at a position from 1 to 12. Position 9 gets the bit of a ready sheet beside it.
    void status(std::size_t position, char character);

    [[nodiscard]] const std::vector<ScanmarkForm>& forms() const noexcept { return forms_; }
    [[nodiscard]] std::optional<Int32> threshold() const noexcept { return threshold_; }

private:
    enum class Frame { None, Open };
    enum class Stage { None, UnderWay, AtDecision };

    void onByte(Byte byte) override;
    void onClose() override;
    void onSheetPut() override;
    void onLeftover() override;

    void obey(const std::string& command);
    void reset();
    void setThreshold(const std::string& argument);
    void form(const std::string& keyword, const std::string& arguments);
    void reportStatus();
    void startRead();
    void takeSheet();
    void sendAway(SheetEvent event, const std::string& stacker);
    void print(const std::string& text);
    void doNotPrint();

    void acknowledge();
    void refuse(const std::string& why);
    void letSheetGo();
    [[nodiscard]] bool sheetReady() const;
    [[nodiscard]] std::string cellBytes() const;
    [[nodiscard]] char cellByte(Int16 value) const;

    const bool columnModel_; // threshold, FRM=MC, raw values
    const bool ejects_;

    Frame frame_ = Frame::None;
    std::string command_;
    bool session_ = false;
    bool printTextOpen_ = false;
    bool printOff_ = false; // the command before was PRN$ N

    std::optional<Int32> threshold_;
    bool formOpen_ = false;
    ScanmarkForm openForm_;
    std::vector<ScanmarkForm> forms_;
    std::size_t reads_ = 0; // since the forms were loaded

    Stage stage_ = Stage::None;
    bool toldReady_ = false;
    bool waitingForSheet_ = false;
    Moment readyFrom_{};

    std::string status_;
    bool jammed_ = false;
    Moment replyTime_;
    Moment feedTime_;
    Moment readyTime_;
    Int32 endAfter_;
    bool end_;
    bool answersPrintOff_;
};

} // namespace kel
