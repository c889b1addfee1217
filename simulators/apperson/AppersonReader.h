// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"

#include <deque>
#include <set>

namespace kel {

/// What the simulated Apperson readers have in common: they answer a command with "OK" and something after it, and
/// they want the commands of a start in their order.
///
/// Settings: `feed-ms` (how long a sheet takes), `reply-ms`, `reply-tail` (what follows "OK", in the notation of
/// transcripts; a line end without it), `refuse` and `silent` (commands, with commas between, that are answered "NO"
/// and not at all; neither has an effect), `reply-lump` (how many bytes of a reply come together; 1 without it, as they
/// are on the wire, 0 is all of them), `end-lump` (the same for the reply that ends a session, which a host takes in
/// one look; 0 without it), `reader-grade` (the host leaves the grading to the reader, and so must not switch it to
/// sending for the host), `jam-code` (206 without it: the code for a sheet that is stuck).
class AppersonReader : public Simulator {
protected:
    explicit AppersonReader(SimulatorOptions options);

    /// Replies to a command, with so many bytes at most. False if it is one that is refused or not heard.
    bool reply(const std::string& command, std::size_t longest = std::string::npos);
    /// The same to the command that ends the session.
    bool replyAtEnd(const std::string& command);

    /// The commands that a start consists of from here on.
    void expectSteps(std::deque<std::string> steps)
    {
        steps_ = std::move(steps);
        stepTaken_ = false;
    }

    /// A command of a start: answered, and a mistake of the host unless it is the next one.
    void takeStep(const std::string& command);

    /// Whether the start has got as far as the first of its steps.
    [[nodiscard]] bool stepTaken() const noexcept { return stepTaken_; }
    [[nodiscard]] bool stepsDone() const noexcept { return steps_.empty(); }

    /// What the host should have sent before a command that it sends now.
    void demandStepsDone(const std::string& command);

    /// A field of the sheet as a number, a fallback where there is none.
    [[nodiscard]] Int32 fieldNumber(const std::string& name, Int32 fallback) const;

    [[nodiscard]] bool readerGrade() const noexcept { return readerGrade_; }
    [[nodiscard]] Moment feedTime() const noexcept { return feedTime_; }
    [[nodiscard]] Int32 jamCode() const noexcept { return jamCode_; }

private:
    bool reply(const std::string& command, std::size_t longest, Int32 lump);

    std::deque<std::string> steps_;
    bool stepTaken_ = false;
    Moment feedTime_;
    Moment replyTime_;
    Int32 replyLump_;
    Int32 endLump_;
    std::string okay_;
    std::set<std::string> refused_;
    std::set<std::string> unheard_;
    bool readerGrade_;
    Int32 jamCode_;
};

/// A text cut or filled up with blanks to a length.
[[nodiscard]] std::string cutOrPadded(std::string text, std::size_t length);

} // namespace kel
