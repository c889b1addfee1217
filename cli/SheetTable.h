// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"

#include <functional>
#include <string>

namespace kel {

/// A sheet as a person reads it: a heading, and the sides as grids of one sign a cell, side by side if `width` columns
/// hold them. A mark is its value: 1 to 9, A to Z for 10 to 35, # above; a blank is a dot.
[[nodiscard]] std::string sheetTable(const host::Sheet& sheet, std::size_t width);

/// Shows the sheets to a person. Failures are not part of the table: they go to `tell`, each as one sentence.
class TableText final : public host::Events {
public:
    using Write = std::function<void(const std::string& text)>;

    TableText(Write write, Write tell, std::size_t width)
        : write_(std::move(write)), tell_(std::move(tell)), width_(width)
    {
    }

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override;

private:
    Write write_;
    Write tell_;
    std::size_t width_;
};

} // namespace kel
