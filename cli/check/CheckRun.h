// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/Bench.h"
#include "cli/check/CheckResult.h"
#include "cli/check/Dialects.h"
#include "cli/check/Dialogue.h"
#include "host/Events.h"
#include "host/Request.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// What a check is asked to do.
struct CheckPlan {
    host::Request request;
    Int32 sheets = 0;         ///< how many copies of one sheet are to be read
    bool formGiven = false;   ///< whether the form is that of the sheets, and not merely the model's usual size
    bool search = false;      ///< look for the reader where it does not answer
    bool interactive = false; ///< ask the operator what only a person can see
    bool yes = false;         ///< the sheets lie in the feeder
};

/// The person at the reader.
class Operator {
public:
    virtual ~Operator() = default;
    /// Says what to do, and waits until it is done; false if the operator stops the check.
    [[nodiscard]] virtual bool doThis(const std::string& what) = 0;
    /// Asks for a yes or no.
    [[nodiscard]] virtual bool confirms(const std::string& question) = 0;
    /// Shows the progress.
    virtual void tell(const std::string& what) = 0;
};

/// A question to a reader, and how the line is to be set for it.
struct Question {
    Dialect dialect{};
    std::vector<Ask> asks;
    std::string settings;
    Int32 handshaking = 0;
    Int32 listen = 0;     ///< milliseconds before it
    bool patient = false; ///< waits longer than a reader needs: what answers late must not count as silent
};

/// The answers to it.
struct Answer {
    ReplyKind kind = ReplyKind::Silence;
    std::string unasked;              ///< what came before the first of the asks
    std::vector<std::string> replies; ///< to each of the asks
    bool echoed = false;
    std::string refused{}; ///< why the line did not open; empty if it did
    Int32 refusedNumber = 0;
    Section section{};
    Dialogue dialogue{};
};

/// Whether a report, or one of several, is that of a line that is gone.
[[nodiscard]] bool tellsHangUp(Int32 number);
[[nodiscard]] bool tellsHangUp(const std::vector<host::Failure>& failures);

/// The result of a session.
struct SessionSeen {
    bool started = false;
    std::string withheld{}; ///< the first command that was not sent, since paper might have moved
    bool idle = false;      ///< nothing came any more, and it was ended
    std::vector<host::Failure> failures{};
    std::vector<host::Sheet> sheets{};
    Section section{};
    Dialogue dialogue{};
};

/// A check while it runs: what its stages share.
class CheckRun {
public:
    struct Ties {
        Bench& bench;
        Operator& person;
        std::function<void(const CheckResult&)> onResult;
        std::function<bool()> stopWanted; ///< asked now and then; may be empty
        CheckResults recorded{};          ///< of a report: what stages have come to that cannot be held again
        std::function<bool(CheckStage)> isRecorded{};
    };

    CheckRun(CheckPlan plan, Ties ties);

    /// Goes through all stages. A stop ends it in order.
    [[nodiscard]] const CheckResults& run();

    [[nodiscard]] const CheckPlan& plan() const noexcept { return plan_; }
    [[nodiscard]] Bench& bench() noexcept { return ties_.bench; }
    [[nodiscard]] Operator& person() noexcept { return ties_.person; }
    [[nodiscard]] const CheckResults& results() const noexcept { return results_; }
    [[nodiscard]] bool stopWanted() const { return ties_.stopWanted && ties_.stopWanted(); }

    /// The model, and the reader's settings as the plan has them.
    [[nodiscard]] kelReaderType model() const noexcept { return model_; }
    [[nodiscard]] const std::string& lineSettings() const noexcept { return lineSettings_; }
    [[nodiscard]] Int32 handshaking() const noexcept { return handshaking_; }
    [[nodiscard]] Int32 timeout() const noexcept { return timeout_; }     ///< seconds
    [[nodiscard]] Int32 sleepTime() const noexcept { return sleepTime_; } ///< milliseconds
    [[nodiscard]] bool feeds() const noexcept { return feeds_; }
    [[nodiscard]] const DialectEntry& dialect() const { return dialectOf(model_); }

    /// A question of the model's dialect, on the line as the plan has it.
    [[nodiscard]] Question question(std::vector<Ask> asks) const
    {
        return {.dialect = dialect().dialect,
                .asks = std::move(asks),
                .settings = lineSettings_,
                .handshaking = handshaking_,
                .patient = true};
    }

    /// Milliseconds that a character takes on the line.
    [[nodiscard]] double characterTime() const;

    void add(CheckResult result);

    /// Asks what a dialect asks, with the line set so, after listening to it for some milliseconds.
    [[nodiscard]] Answer ask(const std::string& name, const Question& question);
    /// The same as this model would be asked.
    [[nodiscard]] Answer ask(const std::string& name);

    /// The same, but listens to the line for a second first. In one go: a reader that a session has left in the middle
    /// of something may forget it when the line is closed.
    [[nodiscard]] Answer listenAndAsk(const std::string& name);

    /// Starts the reader, reads so many sheets and ends it. Without sheets no paper moves.
    [[nodiscard]] SessionSeen hold(const std::string& name, Int32 sheets) { return hold(name, sheets, plan_.request); }
    [[nodiscard]] SessionSeen hold(const std::string& name, Int32 sheets, host::Request request);

    // What one stage has found and another needs.
    std::optional<Answer> first{}; ///< what came upon the first question
    bool answered = false;         ///< the reader answers as its model does
    bool reachable = true;         ///< it makes sense to go on
    std::string whyNot{};          ///< if it does not

private:
    void addRecorded(CheckStage stage);

    CheckPlan plan_;
    Ties ties_;
    CheckResults results_;
    kelReaderType model_ = kelReaderTypeNone;
    std::string lineSettings_;
    Int32 handshaking_ = 0;
    Int32 timeout_ = 0;
    Int32 sleepTime_ = 0;
    bool feeds_ = false;
};

/// Thrown where the operator stops the check.
struct CheckStopped {};

/// The stages, in order.
void lineStage(CheckRun& run);
void answerStage(CheckRun& run);
void sessionStage(CheckRun& run);
void sheetStage(CheckRun& run);
void confirmStage(CheckRun& run);
void afterStage(CheckRun& run);
/// Instead of the first two, for readers without a line.
void libraryStage(CheckRun& run);

} // namespace kel
