// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "platform/SerialControl.h"

namespace kel {

/// A serial control that hands all on to another one, but for what a class of its own does otherwise.
class ControlAround : public SerialControl, public CountsLineErrors, public TellsModemLines {
public:
    [[nodiscard]] Int16 CommPort() const override { return inner().CommPort(); }
    void CommPort(Int16 value) override { inner().CommPort(value); }
    [[nodiscard]] std::string Settings() const override { return inner().Settings(); }
    void Settings(const std::string& value) override { inner().Settings(value); }
    [[nodiscard]] Int32 Handshaking() const override { return inner().Handshaking(); }
    void Handshaking(Int32 value) override { inner().Handshaking(value); }
    [[nodiscard]] Boolean PortOpen() const override { return inner().PortOpen(); }
    void PortOpen(Boolean value) override { inner().PortOpen(value); }
    [[nodiscard]] Int32 InputLen() const override { return inner().InputLen(); }
    void InputLen(Int32 value) override { inner().InputLen(value); }
    [[nodiscard]] Int32 InBufferCount() override { return inner().InBufferCount(); }
    [[nodiscard]] std::string Input() override { return inner().Input(); }
    void Output(std::string_view bytes) override { inner().Output(bytes); }

    [[nodiscard]] LineErrors lineErrors() override
    {
        auto* const counting = dynamic_cast<CountsLineErrors*>(&inner());
        return counting ? counting->lineErrors() : LineErrors();
    }
    [[nodiscard]] std::optional<ModemLines> modemLines() override
    {
        auto* const telling = dynamic_cast<TellsModemLines*>(&inner());
        return telling ? telling->modemLines() : std::nullopt;
    }

protected:
    /// Asked anew each time: a carrier may give another control from one access to the next.
    [[nodiscard]] virtual SerialControl& inner() const = 0;
};

} // namespace kel
