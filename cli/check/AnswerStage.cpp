// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "cli/check/Search.h"

namespace kel {

namespace {

std::string shown(const std::vector<std::string>& replies)
{
    constexpr std::size_t kMost = 24;
    std::string text;
    for (const std::string& reply : replies) {
        if (reply.empty())
            continue;
        text +=
            (text.empty() ? "" : "; ") + transcriptBytes(reply.substr(0, kMost)) + (reply.size() > kMost ? " ..." : "");
    }
    return text.empty() ? "nothing" : text;
}

bool isAnswer(ReplyKind kind)
{
    return kind == ReplyKind::Good || kind == ReplyKind::Longer || kind == ReplyKind::Shorter;
}

/// Bytes that nobody fetched in time are lost; others have come otherwise than they were sent.
Cause causeOf(const LineErrors& errors)
{
    return errors.parity + errors.framing > 0 ? Cause::Garbled : Cause::BytesLost;
}

/// What a reader that did not answer as its model does has done in its place.
Cause causeOf(const Answer& answer)
{
    if (answer.echoed)
        return Cause::Echo;
    if (!answer.refused.empty())
        return Cause::LineHungUp;
    if (answer.section.errors.any())
        return causeOf(answer.section.errors);
    if (answer.kind != ReplyKind::Silence)
        return Cause::Garbled;
    const std::optional<ModemLines>& modem = answer.section.modem;
    return modem && modem->dataSetReady && !modem->clearToSend ? Cause::HandshakingUnwired : Cause::NoAnswer;
}

CheckResult resultOf(CheckRun& run, const Answer& answer)
{
    CheckResult result{.stage = CheckStage::Answers,
                       .name = "the reader answers",
                       .status = CheckStatus::Pass,
                       .expected = std::string(run.dialect().expected),
                       .seen = shown(answer.replies),
                       .milliseconds = answer.dialogue.milliseconds};
    if (answer.kind == ReplyKind::Longer || answer.kind == ReplyKind::Shorter) {
        result.status = CheckStatus::Warn;
        result.cause = answer.kind == ReplyKind::Longer ? Cause::StatusLonger : Cause::StatusShorter;
    }
    return result;
}

/// Whether a start of the session gets a reply where the question got none.
bool startAnswers(CheckRun& run)
{
    const SessionSeen seen = run.hold("try", 0);
    return (seen.started || !seen.withheld.empty()) && seen.dialogue.anyReply();
}

void checkErrors(CheckRun& run, const Answer& answer)
{
    if (!answer.section.errors.any())
        return;
    run.add({.stage = CheckStage::Answers,
             .name = "characters arrive whole",
             .status = CheckStatus::Warn,
             .seen = lineErrorsText(answer.section.errors),
             .cause = causeOf(answer.section.errors)});
}

/// A byte 11 in the middle of a question spoils it, unless something removes it.
void checkTransparency(CheckRun& run)
{
    const DialectEntry& dialect = run.dialect();
    CheckResult result{
        .stage = CheckStage::Answers, .name = "bytes 11 and 13 get through", .status = CheckStatus::NotApplicable};
    if (!dialect.withXon.empty() && run.model() != kelReaderTypeChatsworthOMR2000) {
        const Answer answer = run.ask("question with 11", run.question(dialect.withXon));
        const bool swallowed = isAnswer(judgeReplies(dialect.dialect, answer.replies));
        result.status = swallowed ? CheckStatus::Fail : CheckStatus::Pass;
        result.milliseconds = answer.dialogue.milliseconds;
        if (swallowed) {
            result.seen = "a question with 11 in it was answered as if it had none";
            result.cause = Cause::BytesSwallowed;
        }
    }
    run.add(result);
}

void checkState(CheckRun& run, const Answer& answer)
{
    const bool unfinished = tellsUnfinished(run.dialect().dialect, answer.replies);
    const bool jam = tellsJam(run.dialect().dialect, answer.replies);
    CheckResult result{.stage = CheckStage::Answers, .name = "the reader is at rest", .status = CheckStatus::Pass};
    if (unfinished || jam) {
        result.status = CheckStatus::Warn;
        result.seen = shown(answer.replies);
        result.cause = unfinished ? Cause::LeftInMode : Cause::Jam;
    }
    run.add(result);
}

void tellFound(CheckRun& run, const Found& found)
{
    CheckResult result{.stage = CheckStage::Answers,
                       .name = "the search",
                       .status = CheckStatus::Fail,
                       .expected = run.lineSettings(),
                       .seen = foundText(found),
                       .advice = foundAdvice(found, run.model()),
                       .cause = foundCause(found, run.model(), run.lineSettings())};
    if (result.cause == Cause::None)
        result.status = CheckStatus::Warn;
    run.add(result);
}

void lookElsewhere(CheckRun& run)
{
    if (!run.plan().search) {
        run.add({.stage = CheckStage::Answers,
                 .name = "the search",
                 .status = CheckStatus::Skipped,
                 .advice = "--search looks for other speeds, parities and models."});
        return;
    }
    if (const std::optional<Found> found = searchReader(run))
        tellFound(run, *found);
    else
        run.add({.stage = CheckStage::Answers,
                 .name = "the search",
                 .status = CheckStatus::Fail,
                 .seen = "nothing that answers in a known way"});
}

void failed(CheckRun& run, const Answer& answer)
{
    const Cause cause = causeOf(answer);
    CheckResult result = resultOf(run, answer);
    if (cause == Cause::NoAnswer && startAnswers(run)) {
        result.status = CheckStatus::Warn;
        result.seen = "nothing; but a session starts";
        run.add(result);
        run.answered = true;
        return;
    }
    result.status = CheckStatus::Fail;
    result.cause = cause;
    if (!answer.refused.empty())
        result.seen = answer.refused;
    run.add(result);
    run.reachable = false;
    run.whyNot = "the reader does not answer";
    if (cause != Cause::Echo && cause != Cause::LineHungUp && cause != Cause::BytesLost)
        lookElsewhere(run);
}

} // namespace

void answerStage(CheckRun& run)
{
    const Answer first = run.first.value();
    const Answer answer = isAnswer(first.kind) || first.echoed ? first : run.ask("question 2");
    if (!isAnswer(answer.kind) || answer.echoed) {
        failed(run, answer);
        return;
    }
    run.answered = true;
    CheckResult result = resultOf(run, answer);
    if (!isAnswer(first.kind)) {
        result.status = CheckStatus::Warn;
        result.seen = "nothing at first, then " + result.seen;
        result.cause = Cause::LeftInMode;
    }
    run.add(result);
    checkErrors(run, answer);
    if (answer.section.errors.parity + answer.section.errors.framing > 0 && run.plan().search)
        lookElsewhere(run);
    checkState(run, answer);
    if (run.plan().search && answer.kind == ReplyKind::Good)
        checkTransparency(run);
}

} // namespace kel
