// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedSerialControl.h"

#include <algorithm>

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
    SerialProperties::CommPort(value);
    record(HostAction::Kind::Port, std::to_string(value));
}

void SimulatedSerialControl::Settings(const std::string& value)
{
    SerialProperties::Settings(value);
    record(HostAction::Kind::Settings, value);
}

void SimulatedSerialControl::Handshaking(Int32 value)
{
    SerialProperties::Handshaking(value);
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
    SimulatedLine* const line = lineOfPort();
    if (!line)
        throw RuntimeFailure(FailureCode::InvalidPortNumber);
    line->open(CommPort(), parameters(), Settings());
    open_ = line;
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
    std::string bytes = line.take(mostOfInput());
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

SimulatedLine* SimulatedSerialControl::lineOfPort() const
{
    const auto port = static_cast<std::size_t>(std::max<Int16>(CommPort(), 0));
    return port >= 1 && port <= lines_.size() ? &lines_[port - 1] : nullptr;
}

void SimulatedSerialControl::record(HostAction::Kind kind, const std::string& text)
{
    if (SimulatedLine* const line = lineOfPort())
        line->record(kind, text);
}

} // namespace kel
