// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "platform/SerialProperties.h"

#include <memory>

namespace kel {

class ReceivedInput;

/// This machine's end of an open line, with what has been received from it.
class OpenLine {
public:
    virtual ~OpenLine() = default;

    /// Sets the line. 8015 when something of it is refused.
    virtual void set(const LineParameters& line) = 0;

    [[nodiscard]] virtual ReceivedInput& input() = 0;

    /// Sends all bytes; fails as `SerialControl::Output` does.
    virtual void send(std::string_view bytes) = 0;

    /// The wires of the far end, where there are any.
    [[nodiscard]] virtual std::optional<ModemLines> modemLines() { return std::nullopt; }
};

/// A serial control on the lines of some system: the line while it is open. A device that refuses new settings fails
/// with 8015, and keeps the old ones.
class LineControl : public SerialProperties, public CountsLineErrors, public TellsModemLines {
public:
    [[nodiscard]] Boolean PortOpen() const override { return open_ != nullptr; }
    void PortOpen(Boolean value) override;

    [[nodiscard]] Int32 InBufferCount() override;
    [[nodiscard]] std::string Input() override;
    void Output(std::string_view bytes) override;

    [[nodiscard]] LineErrors lineErrors() override;
    [[nodiscard]] std::optional<ModemLines> modemLines() override;

protected:
    /// Closed, set to 9600,N,8,1 without handshaking. Fewer data bits than the least are refused with 380.
    explicit LineControl(Int32 leastDataBits) : SerialProperties(leastDataBits) {}

    /// The open line; 8018 on a closed one.
    [[nodiscard]] OpenLine& line();

private:
    /// Opens a port and sets it; fails as `SerialControl::PortOpen` does.
    [[nodiscard]] virtual std::unique_ptr<OpenLine> open(Int16 port, const LineParameters& parameters) = 0;

    void setLine(const LineParameters& wanted) override;

    std::unique_ptr<OpenLine> open_;
    LineErrors errorsBefore_; // on lines that are closed
};

} // namespace kel
