// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/apperson/AppersonReader.h"

namespace kel {

/// An Apperson reader that sends a line of text for each sheet: the BenchMark 3000 and the Advantage 1200. Its
/// commands are two letters without anything after; each is answered "OK" unless it says otherwise.
///
///     R1                 start; what was under way is given up
///     S1 to S4           (1200, several keys) the key of this version follows
///     E9 dddd            (1200) the points of the essay; no reply
///     K7 iiii  K8 iiii   the identifiers of page 1 and, on a form of two, page 2; the BenchMark does not reply to K7
///     K1                 the key: in pieces of five characters, 10 ms apart, with Q as its last; then the reply
///     K6                 that was the last key
///     M6                 sheets are sent to the host; not when the reader grades
///     I1 A9 R6 S1        (BenchMark)
///     M0
///     M8                 (1200) from now on a line comes for each sheet
///     B1                 (BenchMark) the same; "Z1" CR LF when there are no more sheets
///     A6 A7              (BenchMark) the sheet is ejected, rejected; no reply
///
/// A question of the key is a character whose bits 01 to 10 are its choices on the BenchMark, and five digits 0 or 1 on
/// the 1200. It refuses as the host's mistake: any other command and any other order, pieces that come too fast or are
/// too short, what is no character of a key, a key anywhere but between R1 and the first step after it, S1 for the
/// only key, and an essay of 0000 points.
///
/// Settings beside those of all Apperson readers: `first-ms` (how long the first sheet of a run takes, as long as the
/// others without it), `id-length` (of an identifier, 4 without it), `piece-ms` (the pause
/// between pieces, 10), `key-slack-ms` (how far pieces may be ahead of that in all, 100: a host on a busy machine does
/// not keep its pauses to the millisecond), `k7-reply` (the BenchMark replies to K7), `short-line` (what comes in front
/// of each line of the BenchMark, in the notation of transcripts), `end-line` ("Z1"), `away-reply` (what comes back
/// after A6 and A7, in the notation of transcripts).
///
/// Fields of a sheet: "Student ID", "Page 1 ID", and on the BenchMark "Test ID", "School ID", "Class ID" and "Error
/// Code", on the 1200 "Test Version", "Essay Score" and "Page 2 ID". A row of marks is a question, a column a letter
/// from A; after those of side 1 come those of side 2 on the 1200. The BenchMark reports a jam as an error code; the
/// 1200 is silent.
class DataLineReader final : public AppersonReader {
public:
    explicit DataLineReader(SimulatorOptions options);

    /// A key as the host has sent it.
    struct Key {
        std::string page1;
        std::string page2;                     ///< empty on a form of one page
        std::string essay;                     ///< empty if there was none
        std::map<Int32, std::string> versions; ///< without the Q
        bool complete = false;
    };

    /// The key sent last.
    [[nodiscard]] const Key& key() const noexcept { return key_; }

private:
    void onByte(Byte byte) override;
    void onClose() override;
    void onSheetPut() override;
    void onLeftover() override;

    void obey(const std::string& command);
    void restart();
    void expectStart();

    // The key.
    void demandDownload(const std::string& command);
    void chooseVersion(Int32 version);
    void startPage(std::string& place, const std::string& command, const std::string& identifier);
    void takeArgument(const std::string& command, const std::string& argument);
    void startKey();
    void onKeyByte(Byte byte);
    void checkPace();
    void endKey();
    void endDownload();

    // The sheets.
    void startRun();
    void takeSheet();
    void sendAway(SheetEvent event);
    [[nodiscard]] std::string lineOf(const std::string& errorCode) const;
    [[nodiscard]] std::string answers() const;

    bool bench_;           // a BenchMark 3000
    bool powered_ = false; // R1 has come
    bool running_ = false;
    bool waitingForSheet_ = false;
    std::string command_;
    std::string argument_;
    std::size_t argumentLength_ = 0; // how long the argument of `command_` is; 0 while it is not complete itself

    Key key_;
    bool downloading_ = false;
    bool keyEnded_ = false; // with K6, in this session
    bool keyOpen_ = false;
    bool pageTold_ = false;    // K7 has come for this version
    bool versionTold_ = false; // S has come for this version
    bool essayTold_ = false;   // E9 has come for this version
    bool secondPageTold_ = false;
    Int32 version_ = 1;
    std::string keyBytes_;
    Int32 pieceBytes_ = 0;
    Moment lastKeyByte_{};
    Moment pieceDue_{};
    bool paceTold_ = false;

    Moment firstFeedTime_{};
    std::size_t idLength_;
    Moment piecePause_;
    Moment keySlack_;
    bool k7Reply_;
    std::string shortLine_;
    std::string endLine_;
    std::string awayReply_;
};

} // namespace kel
