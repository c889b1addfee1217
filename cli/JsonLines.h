// SPDX-License-Identifier: MIT
#pragma once

#include "formats/JsonValue.h"
#include "host/Events.h"
#include "host/Fields.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// The events of a scan as JSON, one line each and without the line end. Marks come row by row from row 1; an array
/// that was never dimensioned is `[]`.
[[nodiscard]] Json jsonSheet(const host::Sheet& event);
[[nodiscard]] Json jsonFailure(const host::Failure& event);
[[nodiscard]] std::string jsonLine(const host::Sheet& event);
[[nodiscard]] std::string jsonLine(const host::Failure& event);
[[nodiscard]] std::string jsonLine(const host::BatchEnd& event);

/// A sheet as one line that has the columns of a form's fields by their names.
[[nodiscard]] std::string jsonLine(const host::Sheet& event, const std::vector<host::Field>& fields);

/// Writes each event as its line of JSON, line end included. A failure is also reported to a person. With fields a
/// sheet has their columns instead of its marks.
class JsonLines final : public host::Events {
public:
    using Write = std::function<void(const std::string& line)>;

    explicit JsonLines(Write write, Write tell = {}, std::optional<std::vector<host::Field>> fields = {})
        : write_(std::move(write)), tell_(std::move(tell)), fields_(std::move(fields))
    {
    }

    void sheet(const host::Sheet& event) override
    {
        write_((fields_ ? jsonLine(event, *fields_) : jsonLine(event)) + "\n");
    }
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override { write_(jsonLine(event) + "\n"); }

private:
    Write write_;
    Write tell_;
    std::optional<std::vector<host::Field>> fields_;
};

} // namespace kel
