// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"

#include "host/Batch.h"
#include "host/ModelLookup.h"
#include "platform/LineSettings.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

struct StageEntry {
    CheckStage stage;
    void (*run)(CheckRun& run);
    bool needsReader; ///< whether there is nothing to see without a reader that answers
};

constexpr StageEntry kLineStages[] = {
    {CheckStage::Line, lineStage, false},      {CheckStage::Answers, answerStage, true},
    {CheckStage::Session, sessionStage, true}, {CheckStage::Sheets, sheetStage, true},
    {CheckStage::Confirm, confirmStage, true}, {CheckStage::After, afterStage, true},
};

constexpr StageEntry kLibraryStages[] = {
    {CheckStage::Answers, libraryStage, false},
    {CheckStage::Session, sessionStage, true},
    {CheckStage::Sheets, sheetStage, true},
    {CheckStage::Confirm, confirmStage, true},
};

} // namespace

CheckRun::CheckRun(CheckPlan plan, Ties ties) : plan_(std::move(plan)), ties_(std::move(ties))
{
    clsKELReader reader;
    static_cast<void>(host::prepareReader(reader, plan_.request));
    model_ = reader.ReaderType();
    lineSettings_ = CStr(static_cast<Int32>(reader.BaudRate())) + "," + reader.Parity() + "," +
                    CStr(static_cast<Int32>(reader.DataBits())) + "," + CStr(reader.StopBits());
    handshaking_ = reader.FlowControl();
    timeout_ = reader.Timeout();
    sleepTime_ = reader.SleepTime();
    feeds_ = static_cast<bool>(reader.Feeder());
}

double CheckRun::characterTime() const
{
    return std::chrono::duration<double, std::milli>(parseLineSettings(lineSettings_).characterTime()).count();
}

void CheckRun::add(CheckResult result)
{
    ties_.onResult(result);
    results_.push_back(std::move(result));
}

const CheckResults& CheckRun::run()
{
    const bool usb = host::isUsbModel(model_);
    const std::span<const StageEntry> stages =
        usb ? std::span<const StageEntry>(kLibraryStages) : std::span<const StageEntry>(kLineStages);
    CheckStage at = stages.front().stage;
    try {
        for (const StageEntry& stage : stages) {
            at = stage.stage;
            if (stopWanted())
                throw CheckStopped();
            if (ties_.isRecorded && ties_.isRecorded(at)) {
                addRecorded(at);
                if (!results_.empty() && results_.back().cause == Cause::Interrupted)
                    return results_;
            } else if (!stage.needsReader || reachable) {
                stage.run(*this);
            } else {
                add({.stage = at, .name = std::string(nameOf(at)), .status = CheckStatus::Skipped, .seen = whyNot});
            }
        }
        if (stopWanted())
            throw CheckStopped();
    } catch (const CheckStopped&) {
        add({.stage = at,
             .name = "the check goes to its end",
             .status = CheckStatus::Warn,
             .seen = "it was stopped here",
             .cause = Cause::Interrupted});
    } catch (const SectionMissing& missing) {
        add({.stage = at,
             .name = "the report goes to its end",
             .status = CheckStatus::Warn,
             .seen = "it ends before \"" + std::string(missing.what()) + "\"",
             .cause = Cause::Interrupted});
    }
    return results_;
}

void CheckRun::addRecorded(CheckStage stage)
{
    for (const CheckResult& result : ties_.recorded) {
        if (result.stage == stage)
            add(result);
    }
}

Answer CheckRun::ask(const std::string& name)
{
    return ask(name, question(dialect().asks));
}

Answer CheckRun::listenAndAsk(const std::string& name)
{
    constexpr Int32 kListen = 1000;
    Question listening = question(dialect().asks);
    listening.listen = kListen;
    return ask(name, listening);
}

} // namespace kel
