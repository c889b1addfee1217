// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "cli/check/SheetFindings.h"
#include "host/ModelLookup.h"
#include "types/ModelTable.h"

namespace kel {

namespace {

constexpr const char* kSession = "sheets";

/// The highest value that a model's marks have; 0 where they are raw.
Int16 highestMark(kelReaderType model)
{
    if (host::isUsbModel(model) || Wire("ScanmarkRaw").isOf(model))
        return 0;
    switch (dialectOf(model).dialect) {
    case Dialect::OpScan:
    case Dialect::SekonicLarge:
    case Dialect::SekonicSmall: return 15;
    case Dialect::Scanmark: return 9;
    case Dialect::AppersonLink: return 199;
    default: return 0;
    }
}

std::string prompt(const CheckRun& run)
{
    const std::string sheets = std::to_string(run.plan().sheets);
    if (run.feeds())
        return "Put " + sheets + " copies of one filled sheet into the feeder, and nothing else.";
    return "Have one filled sheet ready. Feed it " + sheets + " times, whenever the reader asks for it.";
}

/// A reader that takes the byte 11 for the command to feed, and does nothing: does it get that byte? In the letter of a
/// scan mode it makes the mode an unknown one; removed, it leaves a known one.
bool opScanMissesXon(CheckRun& run, const Answer& behind)
{
    constexpr std::size_t kModePlace = 48;
    const std::string& before = behind.replies.front();
    if (before.size() <= kModePlace)
        return false;
    const std::string mode(1, before[kModePlace]);
    const std::string other = mode == "w" ? "i" : "w";
    const Answer answer =
        run.ask("mode with 11",
                run.question({{"e\x11" + other + "\x04", 200, false}, {"s0"}, {"e" + mode + "\x04", 200, false}}));
    const std::string& report = answer.replies[1];
    return report.size() > kModePlace && report.substr(kModePlace, 1) == other;
}

/// Asks for the reader's status after its sheets, and where a Sekonic has said nothing for its timing marks.
Answer askBehind(CheckRun& run)
{
    std::vector<Ask> asks = run.dialect().asks;
    if (run.dialect().dialect == Dialect::SekonicLarge || run.dialect().dialect == Dialect::SekonicSmall)
        asks.push_back({"\x05T\r"});
    return run.ask("after the sheets", run.question(asks));
}

} // namespace

void sheetStage(CheckRun& run)
{
    if (run.plan().sheets == 0) {
        run.add({.stage = CheckStage::Sheets,
                 .name = "sheets",
                 .status = CheckStatus::Skipped,
                 .advice = "--sheets N reads the same sheet N times."});
        return;
    }
    if (!run.plan().yes && !run.person().doThis(prompt(run)))
        throw CheckStopped();
    run.person().tell("reading sheets");

    const SessionSeen session = run.hold(kSession, run.plan().sheets);
    SheetsSeen seen{.model = run.model(),
                    .usb = host::isUsbModel(run.model()),
                    .wanted = run.plan().sheets,
                    .sheets = session.sheets,
                    .failures = session.failures,
                    .dialogue = session.dialogue,
                    .errors = session.section.errors,
                    .highestMark = highestMark(run.model())};
    if (run.plan().formGiven && run.plan().request.form.side1Rows && !run.plan().request.form.side1Rows->empty())
        seen.formRows = run.plan().request.form.side1Rows->front();
    if (!seen.usb) {
        seen.character = run.characterTime();
        const Answer behind = askBehind(run);
        seen.behind = behind.replies;
        if (run.dialect().dialect == Dialect::OpScan && session.sheets.empty())
            seen.swallowsXon = opScanMissesXon(run, behind);
    }
    for (CheckResult& result : judgeSheets(seen)) {
        if (result.name == "all sheets come")
            result.milliseconds = session.dialogue.milliseconds;
        run.add(result);
    }
}

} // namespace kel
