// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "platform/LineErrors.h"
#include "platform/ModemLines.h"

#include <optional>
#include <string>

namespace kel {

/// This machine's end of an open line, wherever the line goes.
class SystemLine {
public:
    virtual ~SystemLine() = default;

    /// Sets the line. 8015 when something of it is refused.
    virtual void set(const LineParameters& line) = 0;

    /// Whether characters with a wrong parity bit come marked, as `MarkedInput` decodes them; settings change it.
    [[nodiscard]] virtual bool marksParity() const noexcept { return false; }

    /// What the system has counted on the device up to now; nothing where it does not count.
    [[nodiscard]] virtual std::optional<LineErrors> countedErrors() const noexcept { return std::nullopt; }

    /// The wires of the far end; nothing for a line that has none.
    [[nodiscard]] virtual std::optional<ModemLines> modemLines() const noexcept { return std::nullopt; }

    /// Drops the input that has arrived.
    virtual void dropInput() noexcept = 0;

    /// What to read, write and wait on; it never blocks.
    [[nodiscard]] virtual int handle() const noexcept = 0;

    /// How failures name it: "Port 3 (/dev/ttyUSB0)".
    [[nodiscard]] virtual const std::string& name() const noexcept = 0;
};

} // namespace kel
