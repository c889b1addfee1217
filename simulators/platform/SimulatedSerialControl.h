// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "platform/SerialProperties.h"
#include "simulators/platform/SimulatedLine.h"

#include <span>

namespace kel {

/// A serial control on the lines of a simulated platform.
class SimulatedSerialControl final : public SerialProperties, public CountsLineErrors, public TellsModemLines {
public:
    /// The lines of the ports from 1 on.
    SimulatedSerialControl(std::span<SimulatedLine> lines, SimulatedClock& clock) : lines_(lines), clock_(clock) {}
    ~SimulatedSerialControl() override;
    SimulatedSerialControl(const SimulatedSerialControl&) = delete;
    SimulatedSerialControl& operator=(const SimulatedSerialControl&) = delete;

    using SerialProperties::CommPort;
    void CommPort(Int16 value) override;
    using SerialProperties::Settings;
    void Settings(const std::string& value) override;
    using SerialProperties::Handshaking;
    void Handshaking(Int32 value) override;
    [[nodiscard]] Boolean PortOpen() const override { return open_ != nullptr; }
    void PortOpen(Boolean value) override;
    [[nodiscard]] Int32 InBufferCount() override;
    [[nodiscard]] std::string Input() override;
    void Output(std::string_view bytes) override;

    /// Those that the device at the far end has, if it has any: a simulated reader does.
    [[nodiscard]] LineErrors lineErrors() override;
    [[nodiscard]] std::optional<ModemLines> modemLines() override;

private:
    [[nodiscard]] SimulatedLine& openLine() const;
    [[nodiscard]] SimulatedLine* lineOfPort() const;
    void record(HostAction::Kind kind, const std::string& text);

    std::span<SimulatedLine> lines_;
    SimulatedClock& clock_;
    SimulatedLine* open_ = nullptr;
    LineErrors errors_;
};

} // namespace kel
