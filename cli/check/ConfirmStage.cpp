// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "profiles/clsKELReaderProfiles.h"
#include "types/Text.h"

namespace kel {

namespace {

void confirm(CheckRun& run, const char* name, const std::string& question)
{
    const bool confirmed = run.person().confirms(question);
    run.add({.stage = CheckStage::Confirm,
             .name = name,
             .status = confirmed ? CheckStatus::Pass : CheckStatus::Fail,
             .expected = question,
             .seen = confirmed ? "confirmed" : "denied",
             .cause = confirmed ? Cause::None : Cause::Reported});
}

void prepare(CheckRun& run, const std::string& what)
{
    if (!run.person().doThis(what))
        throw CheckStopped();
}

void emptyFeeder(CheckRun& run)
{
    prepare(run, "Put one sheet into the feeder, and nothing else.");
    static_cast<void>(run.hold("confirm: feeder runs empty", 2));
    confirm(run, "the feeder runs empty", "Did the reader read one sheet and then stop by itself?");
}

void rejectHopper(CheckRun& run)
{
    prepare(run, "Put one sheet into the feeder.");
    host::Request request = run.plan().request;
    request.rejectSheets = {1};
    static_cast<void>(run.hold("confirm: reject hopper", 1, request));
    confirm(run, "a rejected sheet goes to its own hopper", "Did the sheet go to the reject hopper?");
}

void imprint(CheckRun& run)
{
    prepare(run, "Put one sheet into the feeder.");
    host::Request request = run.plan().request;
    request.print.print1 = "CHECK {date}";
    static_cast<void>(run.hold("confirm: print", 1, request));
    confirm(run, "the imprinter prints", "Does the sheet bear the word CHECK and today's date?");
}

void cancelInTheMiddle(CheckRun& run)
{
    prepare(run, "Put three sheets into the feeder.");
    static_cast<void>(run.hold("confirm: stop", 1));
    confirm(run, "a stop leaves the other sheets", "Did the reader read one sheet and leave the others?");
}

void cablePulled(CheckRun& run)
{
    prepare(run, "Pull the reader's cable out.");
    const Answer pulled = run.ask("confirm: cable out");
    prepare(run, "Put the cable back.");
    const Answer back = run.ask("confirm: cable back");
    const bool silent = pulled.kind == ReplyKind::Silence;
    const bool answers = back.kind != ReplyKind::Silence;
    run.add({.stage = CheckStage::Confirm,
             .name = "the cable may be pulled and put back",
             .status = silent && answers ? CheckStatus::Pass : CheckStatus::Fail,
             .seen = std::string(silent ? "silence" : "answers") + " without it, " + (answers ? "answers" : "silence") +
                     " with it",
             .cause = silent && answers ? Cause::None : Cause::Reported});
}

} // namespace

void confirmStage(CheckRun& run)
{
    if (!run.plan().interactive) {
        run.add({.stage = CheckStage::Confirm,
                 .name = "what the operator sees",
                 .status = CheckStatus::Skipped,
                 .advice = "--interactive asks for it."});
        return;
    }
    clsKELReaderProfiles profiles;
    const Reference<clsKELReaderProfile> profile = profiles.Item(CStr(static_cast<Int32>(run.model())));
    if (run.feeds())
        emptyFeeder(run);
    if (profile->Rejecter())
        rejectHopper(run);
    if (profile->Printer() || profile->PrinterEnabled())
        imprint(run);
    if (run.feeds())
        cancelInTheMiddle(run);
    if (profile->InterfaceType() == kelReaderInterfaceTypeSerial)
        cablePulled(run);
}

void afterStage(CheckRun& run)
{
    const Answer answer = run.ask("after");
    CheckResult result{.stage = CheckStage::After,
                       .name = "reader and line are as they were",
                       .status = CheckStatus::Pass,
                       .expected = "an answer, and nothing else",
                       .milliseconds = answer.dialogue.milliseconds};
    if (answer.kind == ReplyKind::Silence && run.answered) {
        result.status = CheckStatus::Warn;
        result.seen = "nothing";
    } else if (!answer.dialogue.unasked.empty()) {
        result.status = CheckStatus::Warn;
        result.seen = "bytes that nobody asked for";
    } else {
        result.seen = "an answer";
    }
    run.add(result);
}

} // namespace kel
