// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "recording/Transcript.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel {

/// How the note of a pause begins; after it stand milliseconds.
inline const std::string kNotBefore = "not before ";

/// Makes a transcript of what passes a serial control, while it happens.
///
/// A reader's bytes become known to the host when it looks at the line, and what they are when it takes them; a line is
/// handed out as soon as it is complete and all lines before it are. The pause before them lasts to the look that
/// showed them, and its note says how much of it had passed at the last look that did not: whenever exactly they came
/// in between, it made no difference to the host.
///
///     > 1B "QSTS" 0D
///     + 21.4 # not before 20.1
///     < "00000000"
///
/// So a replay, whose host needs no time for itself, has the bytes in time for the same look. The note of a hang-up is
/// the text of the failure that the host got.
class TraceLog {
public:
    using Head = std::vector<std::pair<std::string, std::string>>;

    /// Takes a line of text with its line end. Called in order.
    using Write = std::function<void(const std::string& line)>;

    explicit TraceLog(Write write) : write_(std::move(write)) {}

    /// A line of the head; to be set before the dialogue begins, and ignored after that.
    void head(const std::string& key, const std::string& value);

    /// The line is open from now on: the pause before its first line begins.
    void opened(Moment now);

    /// The host sends.
    void sent(Moment now, std::string_view bytes);

    /// The host has looked: so many bytes wait now.
    void looked(Moment now, std::size_t waiting);

    /// The host has taken bytes.
    void took(Moment now, std::string_view bytes);

    /// Bytes that the host knows of and has not taken.
    [[nodiscard]] std::size_t known() const noexcept { return known_; }

    /// The line has hung up, and the host got this text. What it could not take any more is left out.
    void hungUp(const std::string& text);

    /// Characters have gone wrong on the line by now, so many in all. The note comes before bytes that the host has not
    /// taken yet.
    void wentWrong(const std::string& text) { write_("# so far " + text + "\n"); }

    /// The host has closed the line; what it did not take is left out.
    void closed(Moment now);

private:
    struct Entry {
        Moment at{};
        Moment known{};
        TranscriptLine line;
        std::size_t missing = 0; ///< bytes that are known to be there, and not what they are
    };

    void add(Moment at, Moment known, TranscriptLine line, std::size_t missing = 0);
    void writePause(Moment notBefore, Moment until);
    void writeComplete();
    void giveUpMissing();

    Write write_;
    std::deque<Entry> entries_;
    std::size_t known_ = 0;
    Moment lastLine_{};  // when the last line that was written was sent or known
    Moment notBefore_{}; // the last moment at which the host knew nothing more
    bool begun_ = false;
};

} // namespace kel
