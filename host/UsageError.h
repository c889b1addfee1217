// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace kel::host {

/// A wrong request: an unknown model, a value that does not fit, a broken form file.
/// The text is one sentence for the person who asked.
class KEL_PUBLIC UsageError : public std::runtime_error {
public:
    /// The text may cite a file's content. A control character there would end the sentence or change the terminal: it
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

/// A correct request that cannot be carried out: a file that cannot be written, a pseudo-terminal that cannot be
/// opened. The text is one sentence.
class KEL_PUBLIC OperationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace kel::host
