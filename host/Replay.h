// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "host/Request.h"
#include "types/Export.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kel::host {

/// Replays a recorded session without a reader. Time is that of the transcript, so recorded waits take none.
class KEL_PUBLIC Replay {
public:
    /// From the text of a transcript, as a trace has it, or of a report of `kelreader check`, of which it replays the
    /// session with the sheets; `fileName` is for refusals. UsageError, with the line, for any other text, and for
    /// a head that does not fit.
    explicit Replay(const std::string& text, const std::string& fileName = "the transcript");
    ~Replay();
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    /// The request of the recorded reader; may be changed before the replay.
    [[nodiscard]] Request& request() noexcept;

    /// Replays the session, as `Reader::read` reads a batch.
    Result read(Events& events, const std::function<bool()>& stopWanted = {});

    /// Where the session differed from its transcript, a sentence each; and the first line that the host should have
    /// sent and did not, empty if there is none.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept;
    [[nodiscard]] std::string unsent() const;

private:
    struct State;

    std::unique_ptr<State> state_;
};

} // namespace kel::host
