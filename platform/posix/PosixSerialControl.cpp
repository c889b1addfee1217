#include "platform/posix/PosixSerialControl.h"

#include "platform/posix/LineInput.h"
#include "platform/posix/LineOpenFailure.h"
#include "platform/posix/LineOutput.h"
#include "platform/posix/LocalLine.h"
#include "platform/posix/PosixMessagePump.h"
#include "platform/posix/RemoteLine.h"

#include <utility>

namespace kel {

namespace {

constexpr Int32 kLeastDataBits = 5;

std::unique_ptr<LineEnd> lineEnd(Int16 port, const std::string& device)
{
    if (const std::optional<RemoteAddress> address = remoteAddress(device))
        return std::make_unique<RemoteLine>(port, device, *address);
    return std::make_unique<LocalLine>(port, device);
}

/// A line that the pump serves.
class ServedLine final : public OpenLine {
public:
    ServedLine(std::unique_ptr<LineEnd> end, const LineParameters& parameters, std::shared_ptr<PosixMessagePump> pump)
        : device_(std::move(end)), input_(device_->handle(), device_->name()), pump_(std::move(pump))
    {
        ServedLine::set(parameters);
        // A line that nobody has open receives nothing.
        device_->dropInput();
        pump_->add(input_);
    }

    ~ServedLine() override { pump_->remove(input_); }
    ServedLine(const ServedLine&) = delete;
    ServedLine& operator=(const ServedLine&) = delete;

    void set(const LineParameters& parameters) override
    {
        device_->set(parameters);
        input_.characterTime(parameters.characterTime());
    }

    [[nodiscard]] LineInput& input() override { return input_; }
    void send(std::string_view bytes) override { writeAll(input_, bytes); }

private:
    std::unique_ptr<LineEnd> device_;
    LineInput input_;
    std::shared_ptr<PosixMessagePump> pump_;
};

} // namespace

PosixSerialControl::PosixSerialControl(std::shared_ptr<PosixMessagePump> pump, std::shared_ptr<Registry> registry)
    : LineControl(kLeastDataBits), pump_(std::move(pump)), registry_(std::move(registry))
{
}

std::unique_ptr<OpenLine> PosixSerialControl::open(Int16 port, const LineParameters& parameters)
{
    const std::optional<std::string> device = PortMap(*registry_).get(port);
    if (!device)
        throw unmappedPortFailure(port);
    return std::make_unique<ServedLine>(lineEnd(port, *device), parameters, pump_);
}

LineInput& PosixSerialControl::input()
{
    return static_cast<ServedLine&>(line()).input();
}

} // namespace kel
