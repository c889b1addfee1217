#pragma once

#include "formats/JsonValue.h"
#include "host/Events.h"

#include <functional>
#include <string>

namespace kel {

/// The events of a scan as JSON, one line each and without the line end. Marks stand row by row from row 1; an array
/// that was never dimensioned is `[]`.
[[nodiscard]] Json jsonSheet(const host::Sheet& event);
[[nodiscard]] Json jsonFailure(const host::Failure& event);
[[nodiscard]] std::string jsonLine(const host::Sheet& event);
[[nodiscard]] std::string jsonLine(const host::Failure& event);
[[nodiscard]] std::string jsonLine(const host::BatchEnd& event);

/// Writes each event as its line of JSON, line end included. A failure is told to a person as well.
class JsonLines final : public host::Events {
public:
    using Write = std::function<void(const std::string& line)>;

    explicit JsonLines(Write write, Write tell = {}) : write_(std::move(write)), tell_(std::move(tell)) {}

    void sheet(const host::Sheet& event) override { write_(jsonLine(event) + "\n"); }
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override { write_(jsonLine(event) + "\n"); }

private:
    Write write_;
    Write tell_;
};

} // namespace kel
