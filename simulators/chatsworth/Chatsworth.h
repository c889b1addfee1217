// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/ezdata/CommandFrames.h"
#include "simulators/ezdata/PackedRows.h"
#include "simulators/framework/Simulator.h"

namespace kel {

/// A Chatsworth OMR1100 (20), OMR2000 (21), ALS AccelScan (22), ACF200 (35) or ACP200 (41).
///
///     set-up        1B "SF" 0D, then 1B "HCD" 0D (35) or 1B "FD" 0D (41): sheets are laid in by hand
///                   1B "SL" 0D, then 1B "HCE" 0D: sheets are taken from the feeder; 35 and 41 alone, each answered
///                   by the setting `setup-reply`, which ends in a CR
///     initialised   12 "R7777I00E", no reply; for all but 41, whose set-up ends with its second command
///     by itself     20, and 35 and 41 without the feeder, send each sheet as it comes
///     11            21: the page, or 07 at an empty feeder
///     12 1B "E" 12 "E"     22: the setting `sheet-reply`, which ends in a CR, then the page
///     1B "F" 0D     35 and 41 with the feeder: "0" 0D and the page, or "1" 0D at an empty feeder
///     12 1B "EF" 12 "E", 12 1B "ER" 12 "E"     22: sheet out to the reject hopper or the normal way: "G" 0D
///     12 1B "V" 12 "E"     the version, "G" 0D
///     12 "R7777" 12 "I00" 12 "E"     the locate probe: "G" 0D
///
/// It refuses as the host's mistake: what the model does not know, a set-up command out of its order or before the
/// reply to the one before it, a sheet asked for before the start is done or while one is under way, and an EF or ER
/// without a sheet.
///
/// Settings: `setup-reply`, `setup-ms`, `sheet-reply`, `feed-ms` (from the command to the page, and between two pages
/// that come by themselves), `version`, `spare-bit`.
class Chatsworth final : public Simulator {
public:
    explicit Chatsworth(SimulatorOptions options);

private:
    enum class Start { None, SetUpByHand, SetUpFeeder, SetUpDone, Done };

    void onByte(Byte byte) override;
    void onOpen() override;
    void onClose() override;
    void onSheetPut() override;
    void onLeftover() override;

    void obey(const HostCommand& command);
    void setUp(const std::string& letters);
    void joinedProbe();
    void single(const std::string& text);
    void framed(const std::string& text);
    void startDone();
    void startRead(const std::string& command, const std::string& taken, const std::string& refused);
    void feedByItself();
    void takeSheet();
    void sendAway(SheetEvent event);

    [[nodiscard]] bool isSetUp() const;
    [[nodiscard]] bool sendsByItself() const;

    CommandFrames frames_;
    Start start_ = Start::None;
    bool feeder_ = false;
    bool underWay_ = false;        // a sheet has been asked for, or is expected by itself
    bool waitingForSheet_ = false; // the feeder was empty when its turn came
    bool inPath_ = false;

    std::string setUpReply_;
    Moment setUpTime_;
    std::string sheetReply_;
    Moment feedTime_;
    std::string version_;
    SpareBit spareBit_;
    Moment repliedAt_{};
};

} // namespace kel
