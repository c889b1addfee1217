// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "host/Fields.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// The scan as a table for a spreadsheet: a heading, then one row for each sheet. `side1` and `side2` have the marks
/// alone, as row:column=value, separated by blanks; so are several barcodes. Failures are not rows: they go to `tell`;
/// the end does not. With fields a row has their columns instead of the marks.
class SheetCsv final : public host::Events {
public:
    using Write = std::function<void(const std::string& text)>;

    SheetCsv(Write write, Write tell, std::optional<std::vector<host::Field>> fields = {})
        : write_(std::move(write)), tell_(std::move(tell)), fields_(std::move(fields))
    {
    }

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override;

private:
    void writeHeading();

    Write write_;
    Write tell_;
    std::optional<std::vector<host::Field>> fields_;
    bool headingWritten_ = false;
};

} // namespace kel
