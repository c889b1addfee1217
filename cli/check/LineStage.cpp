// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "platform/PortLook.h"
#include "platform/SerialDevices.h"

namespace kel {

namespace {

constexpr const char* kLatencyTimer = "latency-timer";
constexpr int kQuickTimer = 2; // milliseconds

/// What a line that does not open means.
Cause causeOf(Int32 number)
{
    switch (static_cast<FailureCode>(number)) {
    case FailureCode::PortAlreadyOpen: return Cause::LineBusy;
    case FailureCode::HardwareNotAvailable: return Cause::LineNotPermitted;
    case FailureCode::CannotSetLineState:
    case FailureCode::InvalidPropertyValue: return Cause::LineRefused;
    default: return Cause::LineAbsent;
    }
}

/// The check that a failure of opening answers.
const char* nameOfOpening(Cause cause)
{
    switch (cause) {
    case Cause::LineBusy: return "the line is free";
    case Cause::LineNotPermitted: return "the line may be opened";
    case Cause::LineRefused: return "the port takes the settings";
    default: return "the line is there";
    }
}

constexpr Cause kOpenings[] = {Cause::LineAbsent, Cause::LineNotPermitted, Cause::LineBusy, Cause::LineRefused};

void checkOpening(CheckRun& run, const Answer& answer)
{
    // A line that hangs up later did open.
    const bool opened = answer.refused.empty() || !answer.dialogue.exchanges.empty();
    const Cause failed = opened ? Cause::None : causeOf(answer.refusedNumber);
    for (const Cause cause : kOpenings) {
        CheckResult result{.stage = CheckStage::Line, .name = nameOfOpening(cause), .status = CheckStatus::Pass};
        if (cause == Cause::LineRefused)
            result.expected = run.lineSettings();
        if (cause == failed) {
            result.status = CheckStatus::Fail;
            result.seen = answer.refused;
            result.cause = failed;
            run.reachable = false;
            run.whyNot = "the line does not open";
        }
        run.add(result);
        if (cause == failed)
            return;
    }
}

std::string wiresText(const ModemLines& modem)
{
    const auto wire = [](const char* name, bool on) { return std::string(name) + (on ? " on" : " off"); };
    return wire("CTS", modem.clearToSend) + ", " + wire("DSR", modem.dataSetReady) + ", " +
           wire("DCD", modem.carrierDetect);
}

void checkModemLines(CheckRun& run, const Answer& answer)
{
    constexpr Int32 kHardware = 2; // and 3, which is both
    CheckResult result{.stage = CheckStage::Line, .name = "modem lines", .status = CheckStatus::NotApplicable};
    if (!answer.section.modem) {
        result.seen = "this line has none";
        run.add(result);
        return;
    }
    const bool needed = run.handshaking() >= kHardware;
    result.expected = needed ? "CTS on" : "";
    result.seen = wiresText(*answer.section.modem);
    result.status = CheckStatus::Pass;
    if (needed && !answer.section.modem->clearToSend) {
        result.status = CheckStatus::Warn;
        result.advice =
            "With hardware handshaking nothing is sent while CTS is off. Is the reader on, and does the cable "
            "have RTS and CTS?";
    }
    run.add(result);
}

std::string deviceOf(const CheckRun& run)
{
    const host::Request& request = run.plan().request;
    if (!request.device.empty())
        return request.device;
    return request.port ? deviceOfPort(*request.port).value_or("") : "";
}

void checkAdapter(CheckRun& run)
{
    const std::string device = deviceOf(run);
    const std::optional<std::string> timer = run.bench().fact(kLatencyTimer, [&] { return latencyTimer(device); });
    CheckResult result{
        .stage = CheckStage::Line, .name = "buffering of the adapter", .status = CheckStatus::NotApplicable};
    if (timer) {
        const bool quick = std::atoi(timer->c_str()) <= kQuickTimer;
        result.status = quick ? CheckStatus::Pass : CheckStatus::Warn;
        result.expected = "a latency timer of 1 ms";
        result.seen = *timer + " ms";
        if (!quick)
            result.advice = latencyAdvice(device);
    } else {
        result.seen = "no adapter with a latency timer";
    }
    run.add(result);
}

void checkQuiet(CheckRun& run, const Answer& answer)
{
    const std::string& bytes = answer.unasked;
    CheckResult result{
        .stage = CheckStage::Line, .name = "nothing comes unasked", .status = CheckStatus::Pass, .expected = "silence"};
    if (!bytes.empty()) {
        result.status = CheckStatus::Warn;
        result.seen = std::to_string(bytes.size()) + (bytes.size() == 1 ? " byte" : " bytes");
        result.cause = Cause::LeftInMode;
    }
    run.add(result);
}

} // namespace

void lineStage(CheckRun& run)
{
    const Answer answer = run.listenAndAsk("question 1");
    run.first = answer;
    checkOpening(run, answer);
    if (!run.reachable)
        return;
    checkModemLines(run, answer);
    checkAdapter(run);
    checkQuiet(run, answer);
}

} // namespace kel
