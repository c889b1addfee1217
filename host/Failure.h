// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ErrorReport.h"
#include "types/Export.h"
#include "types/Numbers.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace kel::host {

/// A report of the component, as a value.
struct Failure {
    Int32 line = 0;   ///< number of the failing statement; 0 for a failure that a driver detected
    Int32 number = 0; ///< of the run-time failure, or the reader's own; 0 if there is none
    Int32 type = 0;   ///< an `ErrorType`
    std::string description{};
    std::string source{};
    std::string title{};
    Int16 port = 0;       ///< the port that it is about, 1 to 16; 0 if it is about none
    std::string device{}; ///< the device or remote line that this port stands for
    std::string cause{};  ///< what is wrong with it, worded to follow its name
    std::string remedy{}; ///< what to try, a sentence; may be empty
    Int32 text = 0; ///< number of the description's text in the language file, of several the first; 0 if it has none
};

/// A report as a failure.
[[nodiscard]] KEL_PUBLIC Failure failureOf(const ErrorReport& report);

/// A failure as one line for a person: "Initialize Error: the reader does not answer (8020, basScantron.InitReaderST)".
[[nodiscard]] KEL_PUBLIC std::string failureSentence(const Failure& failure);

/// Thrown if a host wants reports as exceptions: the reports in their order, at least one. Its text is the
/// sentence of the first.
class KEL_PUBLIC ReaderFailed : public std::runtime_error {
public:
    /// From at least one report.
    explicit ReaderFailed(std::vector<Failure> failures);

    /// The reports.
    [[nodiscard]] const std::vector<Failure>& failures() const noexcept { return failures_; }

private:
    std::vector<Failure> failures_;
};

} // namespace kel::host
