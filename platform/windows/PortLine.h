// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineControl.h"
#include "platform/windows/PortInput.h"

#include <memory>
#include <string>

namespace kel {

class WindowsMessagePump;

/// An open serial port of this machine, for exclusive use. What is sent leaves in the background, as what comes is
/// received.
class PortLine final : public OpenLine {
public:
    /// Opens the device of a port, sets it, and drops what came before; the pump serves it from then on. Fails with
    /// 8002 (absent), 8005 (in use), 8010 (not available), 8012 (not a serial device), 8015 (a setting that it does not
    /// take).
    PortLine(Int16 port, const std::string& device, const LineParameters& parameters,
             std::shared_ptr<WindowsMessagePump> pump);

    /// Output that is under way gets a moment to leave; what the device does not take any more is dropped.
    ~PortLine() override;
    PortLine(const PortLine&) = delete;
    PortLine& operator=(const PortLine&) = delete;

    void set(const LineParameters& line) override;
    [[nodiscard]] PortInput& input() override { return input_; }
    void send(std::string_view bytes) override;

private:
    /// What the system sends from; it must stay where it is for so long.
    struct Output {
        Output();

        std::string bytes;
        SystemHandle done;
        OVERLAPPED state{};
    };

    [[nodiscard]] static SystemHandle open(Int16 port, const std::string& device);
    [[nodiscard]] static SystemHandle claim(Int16 port, const std::string& device);
    [[nodiscard]] bool takesPlainCharacters(DCB state) const;
    [[noreturn]] void refuse(const std::string& why) const;
    void awaitOutput();
    [[nodiscard]] bool outputIsDone(DWORD milliseconds);
    [[nodiscard]] DWORD bytesLeft();
    void dropOutput();

    std::string name_;
    SystemHandle port_;
    SystemHandle claim_;
    bool hasModemLines_ = false;
    PortInput input_;
    std::unique_ptr<Output> output_;
    bool sending_ = false;
    std::shared_ptr<WindowsMessagePump> pump_;
};

} // namespace kel
