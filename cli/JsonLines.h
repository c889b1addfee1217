#pragma once

#include "cli/ScanEvents.h"

#include <functional>
#include <string>

namespace kel {

/// The events of a scan as JSON, one line each and without the line end. Marks stand row by row from row 1; an array
/// that was never dimensioned is `[]`.
[[nodiscard]] std::string jsonLine(const ScannedSheet& event);
[[nodiscard]] std::string jsonLine(const ReportedFailure& event);
[[nodiscard]] std::string jsonLine(const BatchEnd& event);

/// Writes each event as its line of JSON, line end included. A failure is told to a person as well.
class JsonLines final : public ScanSink {
public:
    using Write = std::function<void(const std::string& line)>;

    explicit JsonLines(Write write, Write tell = {}) : write_(std::move(write)), tell_(std::move(tell)) {}

    void sheet(const ScannedSheet& event) override { write_(jsonLine(event) + "\n"); }
    void failure(const ReportedFailure& event) override;
    void end(const BatchEnd& event) override { write_(jsonLine(event) + "\n"); }

private:
    Write write_;
    Write tell_;
};

} // namespace kel
