#include "platform/posix/PosixSerialControl.h"

#include "platform/LineSettings.h"
#include "platform/posix/LineInput.h"
#include "platform/posix/LineOpenFailure.h"
#include "platform/posix/LineOutput.h"
#include "platform/posix/LocalLine.h"
#include "platform/posix/PosixMessagePump.h"
#include "platform/posix/RemoteLine.h"

namespace kel {

namespace {

std::unique_ptr<LineEnd> lineEnd(Int16 port, const std::string& device)
{
    if (const std::optional<RemoteAddress> address = remoteAddress(device))
        return std::make_unique<RemoteLine>(port, device, *address);
    return std::make_unique<LocalLine>(port, device);
}

} // namespace

struct PosixSerialControl::OpenLine {
    explicit OpenLine(std::unique_ptr<LineEnd> end) : device(std::move(end)), input(device->handle(), device->name()) {}

    void set(const LineParameters& parameters)
    {
        device->set(parameters);
        input.characterTime(parameters.characterTime());
    }

    std::unique_ptr<LineEnd> device;
    LineInput input;
};

PosixSerialControl::PosixSerialControl(std::shared_ptr<PosixMessagePump> pump, std::shared_ptr<Registry> registry)
    : pump_(std::move(pump)), registry_(std::move(registry))
{
}

PosixSerialControl::~PosixSerialControl()
{
    close();
}

void PosixSerialControl::CommPort(Int16 value)
{
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    port_ = value;
}

void PosixSerialControl::Settings(const std::string& value)
{
    LineParameters wanted = parseLineSettings(value);
    if (wanted.dataBits < 5)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue, failureText(FailureCode::InvalidPropertyValue) +
                                                                    ": \"" + value +
                                                                    "\"; lines have 5 to 8 data bits on this system");
    wanted.handshaking = parameters_.handshaking;
    change(wanted);
    settings_ = value;
}

void PosixSerialControl::Handshaking(Int32 value)
{
    if (value < 0 || value > 3)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue, failureText(FailureCode::InvalidPropertyValue) +
                                                                    ": handshaking " + std::to_string(value) +
                                                                    " is not 0 to 3");
    LineParameters wanted = parameters_;
    wanted.handshaking = value;
    change(wanted);
}

void PosixSerialControl::change(const LineParameters& wanted)
{
    if (open_) {
        try {
            open_->set(wanted);
        } catch (const RuntimeFailure& refused) {
            // A device may have taken half of what was asked for. If it is gone, the next access will tell.
            try {
                open_->set(parameters_);
            } catch (const RuntimeFailure&) {
            }
            throw refused;
        }
    }
    parameters_ = wanted;
}

void PosixSerialControl::PortOpen(Boolean value)
{
    if (!value) {
        close();
        return;
    }
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    open_ = open();
    pump_->add(open_->input);
}

std::unique_ptr<PosixSerialControl::OpenLine> PosixSerialControl::open() const
{
    const std::optional<std::string> device = PortMap(*registry_).get(port_);
    if (!device)
        throw unmappedPortFailure(port_);
    auto line = std::make_unique<OpenLine>(lineEnd(port_, *device));
    line->set(parameters_);
    // A line that nobody has open receives nothing.
    line->device->dropInput();
    return line;
}

void PosixSerialControl::close() noexcept
{
    if (!open_)
        return;
    pump_->remove(open_->input);
    open_.reset();
}

void PosixSerialControl::InputLen(Int32 value)
{
    if (value < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    inputLen_ = value;
}

LineInput& PosixSerialControl::input()
{
    if (!open_)
        throw RuntimeFailure(FailureCode::PortNotOpen);
    return open_->input;
}

Int32 PosixSerialControl::InBufferCount()
{
    return input().count();
}

std::string PosixSerialControl::Input()
{
    return input().take(inputLen_);
}

void PosixSerialControl::Output(std::string_view bytes)
{
    writeAll(input(), bytes);
}

} // namespace kel
