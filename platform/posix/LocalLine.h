// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"
#include "platform/LineDevice.h"
#include "platform/posix/SystemLine.h"
#include "platform/posix/TerminalAttributes.h"

#include <string>

namespace kel {

/// A serial device of this machine, opened for exclusive use.
class LocalLine final : public SystemLine {
public:
    /// Opens the device of a port; a name without a folder is one below /dev. Fails with 8002 (absent), 8005 (in use),
    /// 8010 (not permitted), 8012 (not a serial device); the text names port, device and cause, and what to try.
    LocalLine(Int16 port, const std::string& device);

    /// Gives the device its former settings back and closes it. Output that is under way gets a moment to leave; what
    /// the device does not take any more is dropped.
    ~LocalLine() override;
    LocalLine(const LocalLine&) = delete;
    LocalLine& operator=(const LocalLine&) = delete;

    /// Sets the line. 8015 when the device refuses something, or takes something else in its place. A device without
    /// modem lines has no wire, and may keep what it likes.
    void set(const LineParameters& line) override;

    [[nodiscard]] bool marksParity() const noexcept override { return marksParity_; }
    [[nodiscard]] std::optional<LineErrors> countedErrors() const noexcept override;
    [[nodiscard]] std::optional<ModemLines> modemLines() const noexcept override;

    /// Drops the input that has arrived.
    void dropInput() noexcept override;

    /// What to read, write and wait on; it never blocks.
    [[nodiscard]] int handle() const noexcept override { return terminal_.number(); }

    /// How failures name it: "Port 3 (/dev/ttyUSB0)".
    [[nodiscard]] const std::string& name() const noexcept override { return name_; }

private:
    [[nodiscard]] int open() const;
    [[nodiscard]] bool claim();
    void check(const LineParameters& wanted) const;
    [[noreturn]] void refuse(const std::string& why) const;
    void letOutputLeave() const noexcept;

    std::string device_;
    std::string name_;
    FileDescriptor terminal_;
    TerminalAttributes former_;
    bool hasModemLines_ = false;
    bool marksParity_ = false;
    Moment characterTime_ = LineParameters().characterTime();
};

} // namespace kel
