// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "platform/SerialControl.h"

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

/// A serial control on the lines of some system: the properties, and the line while it is open.
class LineControl : public SerialControl, public CountsLineErrors, public TellsModemLines {
public:
    [[nodiscard]] Int16 CommPort() const override { return port_; }
    void CommPort(Int16 value) override;

    /// Takes effect at once on an open line. When the device refuses the new settings, 8015, the old ones stay.
    [[nodiscard]] std::string Settings() const override { return settings_; }
    void Settings(const std::string& value) override;
    [[nodiscard]] Int32 Handshaking() const override { return parameters_.handshaking; }
    void Handshaking(Int32 value) override;

    [[nodiscard]] Boolean PortOpen() const override { return open_ != nullptr; }
    void PortOpen(Boolean value) override;

    [[nodiscard]] Int32 InputLen() const override { return inputLen_; }
    void InputLen(Int32 value) override;
    [[nodiscard]] Int32 InBufferCount() override;
    [[nodiscard]] std::string Input() override;
    void Output(std::string_view bytes) override;

    [[nodiscard]] LineErrors lineErrors() override;
    [[nodiscard]] std::optional<ModemLines> modemLines() override;

protected:
    /// Closed, set to 9600,N,8,1 without handshaking. Fewer data bits than the least are refused with 380.
    explicit LineControl(Int32 leastDataBits) : leastDataBits_(leastDataBits) {}

    /// The open line; 8018 on a closed one.
    [[nodiscard]] OpenLine& line();

private:
    /// Opens a port and sets it; fails as `SerialControl::PortOpen` does.
    [[nodiscard]] virtual std::unique_ptr<OpenLine> open(Int16 port, const LineParameters& parameters) = 0;

    void change(const LineParameters& wanted);

    Int32 leastDataBits_;
    Int16 port_ = 1;
    std::string settings_ = "9600,N,8,1";
    LineParameters parameters_;
    Int32 inputLen_ = 0;
    std::unique_ptr<OpenLine> open_;
    LineErrors errorsBefore_; // on lines that are closed
};

} // namespace kel
