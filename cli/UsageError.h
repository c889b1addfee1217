#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace kel {

/// The command was called in a wrong way: an unknown model, a value that does not fit, a form file that is broken.
/// The text is one sentence for the person who called it, without the program's name; exit status 2.
class UsageError : public std::runtime_error {
public:
    /// The text may cite what a file holds. A control character there would end the sentence or change the terminal: it
    /// is shown as "?".
    explicit UsageError(std::string text) : std::runtime_error(withoutControls(std::move(text))) {}

private:
    static std::string withoutControls(std::string text)
    {
        std::replace_if(
            text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }, '?');
        return text;
    }
};

/// The command was called rightly and cannot do it: a file that cannot be written, a terminal that cannot be made.
/// The text is one sentence; exit status 1.
class CommandFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace kel
