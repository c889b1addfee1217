// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel {

/// One line of a recorded dialogue.
struct TranscriptLine {
    enum class Kind {
        ToReader,   ///< `> 1B "SRST" 0D`
        FromReader, ///< `< 0D`
        Pause,      ///< `+ 3.5`: milliseconds between the line above and the line below
        Unplug,     ///< `! unplug`: the line hangs up
        Call,       ///< `@ OMR_GetMarks 0 30 63 48 = 1 63 48 : 00 0C`: a call of the USB readers' library
    };

    Kind kind{};
    std::string bytes = {};
    double milliseconds = 0;
    int number = 0;        ///< of the line in its text, from 1; 0 if it was not parsed
    std::string note = {}; ///< of a pause or an unplug: what follows a #; see TraceLog for what it may say

    std::string call = {};           ///< the function's name and what it is given, a blank between two of them
    std::vector<Int32> results = {}; ///< what it returns, and then the numbers that it sets; its bytes are in `bytes`
    bool failed = false;             ///< it was not there: the result is the failure's number, the bytes are its text

    friend bool operator==(const TranscriptLine& a, const TranscriptLine& b)
    {
        return a.kind == b.kind && a.bytes == b.bytes && a.milliseconds == b.milliseconds && a.call == b.call &&
               a.results == b.results && a.failed == b.failed;
    }
};

/// A recorded dialogue between host and reader: its head, and its lines in order.
struct Transcript {
    std::vector<std::pair<std::string, std::string>> head; ///< `# key: value`, in order; a key may come repeatedly
    std::vector<TranscriptLine> lines;

    /// The first value of a key; all values of a key.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    [[nodiscard]] std::vector<std::string> values(std::string_view key) const;
};

/// A text that is no transcript, or one of more than a million lines; the text of the error begins with the number of
/// the line: "line 7: ...".
class TranscriptError : public std::runtime_error {
public:
    TranscriptError(int line, const std::string& what)
        : std::runtime_error("line " + std::to_string(line) + ": " + what), line_(line)
    {
    }
    [[nodiscard]] int line() const noexcept { return line_; }

private:
    int line_;
};

/// Reads a transcript. `# key: value` before the dialogue is its head; any other line that begins with `#`, and what
/// follows a `#` on a line of the dialogue, is a comment. Bytes are pairs of hexadecimal digits and texts in double
/// quotes. Throws TranscriptError.
[[nodiscard]] Transcript parseTranscript(std::string_view text);

/// The text of a transcript, which parses to the same.
[[nodiscard]] std::string writeTranscript(const Transcript& transcript);

/// One line of the dialogue, without a line end.
[[nodiscard]] std::string writeTranscriptLine(const TranscriptLine& line);

/// Bytes in the notation of a transcript: `1B "SRST" 0D`.
[[nodiscard]] std::string transcriptBytes(std::string_view bytes);

/// Bytes from that notation. Throws TranscriptError with line 1.
[[nodiscard]] std::string parseTranscriptBytes(std::string_view text);

} // namespace kel
