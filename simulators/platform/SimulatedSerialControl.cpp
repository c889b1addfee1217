// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedSerialControl.h"

#include "platform/LineSettings.h"

namespace kel {

namespace {

[[noreturn]] void failHungUp()
{
    throw RuntimeFailure(FailureCode::ErrorReadingDevice);
}

} // namespace

SimulatedSerialControl::~SimulatedSerialControl()
{
    if (open_)
        open_->close();
}

void SimulatedSerialControl::CommPort(Int16 value)
{
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    port_ = value;
    record(HostAction::Kind::Port, std::to_string(value));
}

void SimulatedSerialControl::Settings(const std::string& value)
{
    LineParameters parsed = parseLineSettings(value);
    parsed.handshaking = parameters_.handshaking;
    parameters_ = parsed;
    settings_ = value;
    record(HostAction::Kind::Settings, value);
}

void SimulatedSerialControl::Handshaking(Int32 value)
{
    if (value < 0 || value > 3)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    parameters_.handshaking = value;
    record(HostAction::Kind::Handshaking, std::to_string(value));
}

void SimulatedSerialControl::PortOpen(Boolean value)
{
    if (!value) {
        errors_ = lineErrors();
        if (open_)
            open_->close();
        open_ = nullptr;
        return;
    }
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    if (port_ < 1 || static_cast<std::size_t>(port_) > lines_.size())
        throw RuntimeFailure(FailureCode::InvalidPortNumber);
    SimulatedLine& line = lines_[static_cast<std::size_t>(port_ - 1)];
    line.open(port_, parameters_, settings_);
    open_ = &line;
}

void SimulatedSerialControl::InputLen(Int32 value)
{
    if (value < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    inputLen_ = value;
}

Int32 SimulatedSerialControl::InBufferCount()
{
    SimulatedLine& line = openLine();
    clock_.idleLook();
    const std::size_t waiting = line.waiting();
    if (waiting == 0 && line.hungUp())
        failHungUp();
    line.told(waiting);
    return static_cast<Int32>(waiting);
}

std::string SimulatedSerialControl::Input()
{
    SimulatedLine& line = openLine();
    clock_.idleLook();
    std::string bytes = line.take(inputLen_ == 0 ? std::string::npos : static_cast<std::size_t>(inputLen_));
    if (bytes.empty() && line.hungUp())
        failHungUp();
    return bytes;
}

void SimulatedSerialControl::Output(std::string_view bytes)
{
    SimulatedLine& line = openLine();
    if (line.hungUp())
        failHungUp();
    line.output(bytes);
}

/// Those of a line that is closed are kept.
LineErrors SimulatedSerialControl::lineErrors()
{
    auto* const counting = open_ ? dynamic_cast<CountsLineErrors*>(open_->device()) : nullptr;
    return counting ? errors_ + counting->lineErrors() : errors_;
}

std::optional<ModemLines> SimulatedSerialControl::modemLines()
{
    auto* const telling = open_ ? dynamic_cast<TellsModemLines*>(open_->device()) : nullptr;
    return telling ? telling->modemLines() : std::nullopt;
}

SimulatedLine& SimulatedSerialControl::openLine() const
{
    if (!open_)
        throw RuntimeFailure(FailureCode::PortNotOpen);
    return *open_;
}

void SimulatedSerialControl::record(HostAction::Kind kind, const std::string& text)
{
    if (port_ >= 1 && static_cast<std::size_t>(port_) <= lines_.size())
        lines_[static_cast<std::size_t>(port_ - 1)].record(kind, text);
}

} // namespace kel
