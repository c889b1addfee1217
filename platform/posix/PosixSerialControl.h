#pragma once

#include "platform/LineDevice.h"
#include "platform/PortMap.h"
#include "platform/SerialControl.h"

#include <memory>

namespace kel {

class LineInput;
class PosixMessagePump;

/// A serial line of this machine, or one behind the network (see RemoteLine).
///
/// The device is opened and set through libserialport, and by ourselves where it has no modem lines (see LocalLine).
/// The library hands out the descriptor, and the buffer and the waiting are ours: a burst of bytes so costs one poll
/// and one read, where the library's own calls would cost two for every byte.
class PosixSerialControl final : public SerialControl {
public:
    /// Closed, set to 9600,N,8,1 without handshaking. The pump serves the line while it is open; the registry has the
    /// map of the port numbers.
    PosixSerialControl(std::shared_ptr<PosixMessagePump> pump, std::shared_ptr<Registry> registry);
    ~PosixSerialControl() override;
    PosixSerialControl(const PosixSerialControl&) = delete;
    PosixSerialControl& operator=(const PosixSerialControl&) = delete;

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

    /// The input side of the open line, for tests; 8018 on a closed one.
    [[nodiscard]] LineInput& input();

private:
    struct OpenLine;

    [[nodiscard]] std::unique_ptr<OpenLine> open() const;
    void close() noexcept;
    void change(const LineParameters& wanted);

    std::shared_ptr<PosixMessagePump> pump_;
    std::shared_ptr<Registry> registry_;
    Int16 port_ = 1;
    std::string settings_ = "9600,N,8,1";
    LineParameters parameters_;
    Int32 inputLen_ = 0;
    std::unique_ptr<OpenLine> open_;
};

} // namespace kel
