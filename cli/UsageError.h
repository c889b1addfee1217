#pragma once

#include <stdexcept>

namespace kel {

/// The command was called in a wrong way: an unknown model, a value that does not fit, a form file that is broken.
/// The text is one sentence for the person who called it, without the program's name; exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The command was called rightly and cannot do it: a file that cannot be written, a terminal that cannot be made.
/// The text is one sentence; exit status 1.
class CommandFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace kel
