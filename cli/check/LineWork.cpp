// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "cli/check/PaperGuard.h"
#include "host/Batch.h"
#include "platform/Platform.h"

#include <algorithm>
#include <chrono>

namespace kel {

namespace {

using namespace std::chrono_literals;

// A reply is over when nothing has come for so long.
constexpr Moment kQuiet = 60ms;
// On a machine that is busy bytes are seen late: who is patient waits for so long, and longer for a reader that has
// been given a long time-out.
constexpr Moment kPatientQuiet = 300ms;
constexpr Moment kPatience = 2s;
constexpr int kPartOfTimeout = 5;
constexpr Int32 kLook = 2; // milliseconds between looks at the line

// A session is ended when no sheet has come for its time-out, or for so long if that is more, and this besides.
constexpr Moment kLongestSheet = 10s;
// Somebody who puts sheets in by hand takes longer.
constexpr Moment kByHand = 60s;

/// What comes up to the end of a reply, or of the time.
std::string collect(SerialControl& line, Moment most, Moment quiet, const std::function<bool()>& stopped)
{
    std::string bytes;
    MessagePump& pump = platform().pump();
    const Moment begin = pump.now();
    Moment last = begin;
    while (pump.now() - begin < most && !stopped()) {
        if (line.InBufferCount() > 0) {
            bytes += line.Input();
            last = pump.now();
        } else if (!bytes.empty() && pump.now() - last >= quiet) {
            break;
        }
        pump.Sleep(kLook);
    }
    return bytes;
}

/// A message pump's host while a session runs.
class HostTurns {
public:
    explicit HostTurns(std::function<void()> turn) { platform().pump().hostPump(std::move(turn)); }
    ~HostTurns() { platform().pump().hostPump({}); }
    HostTurns(const HostTurns&) = delete;
    HostTurns& operator=(const HostTurns&) = delete;
};

struct SheetsTaken final : host::Events {
    explicit SheetsTaken(std::vector<host::Sheet>& into) : sheets(into) {}
    void sheet(const host::Sheet& event) override
    {
        sheets.push_back(event);
        lastAt = platform().pump().now();
    }

    std::vector<host::Sheet>& sheets;
    std::optional<Moment> lastAt; ///< when the last one came, or the session had started
};

bool isEcho(const std::vector<Ask>& asks, const std::vector<std::string>& replies)
{
    for (std::size_t at = 0; at < asks.size(); ++at) {
        if (!replies[at].starts_with(asks[at].bytes))
            return false;
    }
    return true;
}

} // namespace

bool tellsHangUp(Int32 number)
{
    const auto code = static_cast<FailureCode>(number);
    return code == FailureCode::ErrorReadingDevice || code == FailureCode::InvalidPortNumber;
}

bool tellsHangUp(const std::vector<host::Failure>& failures)
{
    return std::ranges::any_of(failures, [](const host::Failure& failure) { return tellsHangUp(failure.number); });
}

Answer CheckRun::ask(const std::string& name, const Question& question)
{
    if (stopWanted())
        throw CheckStopped();
    clsKELReader reader;
    static_cast<void>(host::prepareReader(reader, plan_.request));
    OpenSection section(bench(), name, reader);
    const auto stopped = [this] { return stopWanted(); };
    Answer answer;
    try {
        SerialControl& line = section.carrier()->mscComm();
        line.Handshaking(question.handshaking);
        line.CommPort(reader.Port());
        line.Settings(question.settings);
        line.PortOpen(True);
        bench().lookAtModemLines();
        answer.unasked = collect(line, std::chrono::milliseconds(question.listen), kQuiet, stopped);
        for (const Ask& ask : question.asks) {
            line.Output(ask.bytes);
            const Moment usual = std::chrono::milliseconds(ask.milliseconds);
            const Moment patience = std::max<Moment>(kPatience, std::chrono::seconds(timeout_) / kPartOfTimeout);
            answer.replies.push_back(question.patient && ask.replies
                                         ? collect(line, std::max(usual, patience), kPatientQuiet, stopped)
                                         : collect(line, usual, kQuiet, stopped));
        }
        line.PortOpen(False);
    } catch (const RuntimeFailure& failure) {
        answer.refused = failure.text();
        answer.refusedNumber = failure.number();
    }
    answer.replies.resize(question.asks.size());
    answer.section = section.end();
    answer.dialogue = dialogueOf(answer.section.trace);
    if (stopWanted())
        throw CheckStopped();
    answer.echoed = isEcho(question.asks, answer.replies);
    answer.kind = judgeReplies(question.dialect, answer.replies);
    return answer;
}

SessionSeen CheckRun::hold(const std::string& name, Int32 sheets, host::Request request)
{
    if (stopWanted())
        throw CheckStopped();
    SessionSeen seen;
    request.maxSheets = sheets;
    clsKELReader reader;
    static_cast<void>(host::prepareReader(reader, request));
    OpenSection section(bench(), name, reader, {{"max-sheets", std::to_string(sheets)}});

    const bool inFeeder = plan_.yes || feeds_;
    const Moment mostIdle =
        std::max<Moment>(std::chrono::seconds(timeout_), inFeeder ? kLongestSheet : kByHand) + kLongestSheet;
    SheetsTaken sink(seen.sheets);
    const auto stopped = [&] {
        seen.idle = seen.idle || (sink.lastAt && platform().pump().now() - *sink.lastAt > mostIdle);
        return seen.idle || bench().stopped() || stopWanted();
    };
    const auto carrier = makeReference<PaperGuard>(
        section.carrier(), PaperGuard::Rules{.model = model_, .paperMayMove = sheets > 0, .stopped = stopped});
    reader.fComm(Reference<Carrier>(carrier));
    {
        host::Session session(reader, request, sink);
        const HostTurns turns([&] {
            if (stopped())
                reader.CancelScan(True);
        });
        seen.started = session.start();
        sink.lastAt = platform().pump().now();
        while (seen.started && session.next()) {
        }
        session.end();
        seen.failures = session.failures();
    }
    seen.withheld = carrier->withheld();
    // What is reported after a command that was not sent is of the check's own making.
    if (!seen.withheld.empty())
        seen.failures.clear();
    reader.fComm(Reference<Carrier>());
    seen.section = section.end();
    if (stopWanted())
        throw CheckStopped();
    seen.dialogue = dialogueOf(seen.section.trace);
    return seen;
}

} // namespace kel
