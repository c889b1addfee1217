#pragma once

#include "cli/Progress.h"
#include "host/Events.h"
#include "host/TextOutput.h"

#include <memory>
#include <optional>
#include <string>

namespace kel {

/// Writes the events of a scan in the form that was asked for, with the progress line kept out of the way. What a
/// person should read of them goes to standard error.
class ScanOutput final : public host::Events {
public:
    /// `format` is json, csv or table; an empty name of a file is standard output. CommandFailure if the file cannot be
    /// made.
    ScanOutput(const std::string& outFile, const std::string& format);

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override;

    [[nodiscard]] const host::TextOutput& output() const { return *output_; }

private:
    Progress progress_;
    std::optional<host::TextOutput> output_;
    std::unique_ptr<host::Events> lines_;
};

} // namespace kel
