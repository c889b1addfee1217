// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "platform/SerialControl.h"

namespace kel {

/// The properties of a serial control: what they are at first, which values each refuses, and when it may change. What
/// is done with the line is for the classes that derive from it.
class SerialProperties : public SerialControl {
public:
    [[nodiscard]] Int16 CommPort() const override { return port_; }
    void CommPort(Int16 value) override;

    /// They take effect at once on an open line. When that refuses the new ones, the old ones stay.
    [[nodiscard]] std::string Settings() const override { return settings_; }
    void Settings(const std::string& value) override;
    [[nodiscard]] Int32 Handshaking() const override { return parameters_.handshaking; }
    void Handshaking(Int32 value) override;

    [[nodiscard]] Int32 InputLen() const override { return inputLen_; }
    void InputLen(Int32 value) override;

protected:
    /// Set to port 1, 9600,N,8,1 without handshaking. Fewer data bits than the least are refused with 380; no text of
    /// settings says less than 4.
    explicit SerialProperties(Int32 leastDataBits = 4) : leastDataBits_(leastDataBits) {}

    /// Settings and handshaking in one.
    [[nodiscard]] const LineParameters& parameters() const noexcept { return parameters_; }

    /// How many bytes one `Input` takes at most.
    [[nodiscard]] std::size_t mostOfInput() const noexcept
    {
        return inputLen_ == 0 ? std::string::npos : static_cast<std::size_t>(inputLen_);
    }

private:
    /// Sets the line, if it is open, from `parameters()` to others; fails if it refuses them.
    virtual void setLine(const LineParameters& wanted) { static_cast<void>(wanted); }

    Int32 leastDataBits_;
    Int16 port_ = 1;
    std::string settings_ = "9600,N,8,1";
    LineParameters parameters_;
    Int32 inputLen_ = 0;
};

} // namespace kel
