// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ReceivedInput.h"
#include "platform/posix/MarkedInput.h"

#include <functional>
#include <optional>

namespace kel {

/// The input side of an open line that is a descriptor.
class LineInput final : public ReceivedInput {
public:
    /// The handle must not block; `name` is for failures.
    LineInput(int handle, std::string name);

    [[nodiscard]] int handle() const noexcept { return handle_; }

    /// Whether the line marks characters with a wrong parity bit, as `MarkedInput` decodes them.
    void marked(bool value) { marked_ = value; }

    /// What the system has counted on the line so far, where it counts; without it, a wrong parity bit is all that is
    /// ever seen.
    using SystemCounts = std::function<std::optional<LineErrors>()>;
    void systemCounts(SystemCounts counts);

    [[nodiscard]] LineErrors errors() override;

private:
    [[nodiscard]] Fetched read(char* into, std::size_t room) override;
    void awaitInput(Moment until) override;

    int handle_;
    bool marked_ = false;
    MarkedInput marks_;
    SystemCounts systemCounts_;
    std::optional<LineErrors> countsAtFirst_;
};

} // namespace kel
