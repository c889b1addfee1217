#pragma once

#include "cli/Progress.h"
#include "cli/ScanEvents.h"
#include "cli/TextOutput.h"

#include <memory>
#include <optional>
#include <string>

namespace kel {

/// Writes the events of a scan in the form that was asked for, with the progress line kept out of the way. What a
/// person should read of them goes to standard error.
class ScanOutput final : public ScanSink {
public:
    /// `format` is json, csv or table; an empty name of a file is standard output. CommandFailure if the file cannot be
    /// made.
    ScanOutput(const std::string& outFile, const std::string& format);

    void sheet(const ScannedSheet& event) override;
    void failure(const ReportedFailure& event) override;
    void end(const BatchEnd& event) override;

    [[nodiscard]] const TextOutput& output() const { return *output_; }

private:
    Progress progress_;
    std::optional<TextOutput> output_;
    std::unique_ptr<ScanSink> lines_;
};

} // namespace kel
