// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineControl.h"
#include "platform/posix/LineInput.h"
#include "platform/posix/LineOutput.h"
#include "platform/posix/PosixMessagePump.h"
#include "platform/posix/SystemLine.h"

#include <memory>
#include <utility>

namespace kel {

/// An open line that the pump serves.
class ServedLine final : public OpenLine {
public:
    /// Sets the line, and drops what has come before: a line that nobody has open receives nothing.
    ServedLine(std::unique_ptr<SystemLine> end, const LineParameters& parameters,
               std::shared_ptr<PosixMessagePump> pump)
        : device_(std::move(end)), input_(device_->handle(), device_->name()), pump_(std::move(pump))
    {
        ServedLine::set(parameters);
        device_->dropInput();
        input_.systemCounts([device = device_.get()] { return device->countedErrors(); });
        pump_->add(input_);
    }

    ~ServedLine() override { pump_->remove(input_); }
    ServedLine(const ServedLine&) = delete;
    ServedLine& operator=(const ServedLine&) = delete;

    void set(const LineParameters& parameters) override
    {
        device_->set(parameters);
        input_.marked(device_->marksParity());
        input_.characterTime(parameters.characterTime());
    }

    [[nodiscard]] LineInput& input() override { return input_; }
    void send(std::string_view bytes) override { writeAll(input_, bytes); }
    [[nodiscard]] std::optional<ModemLines> modemLines() override { return device_->modemLines(); }

private:
    std::unique_ptr<SystemLine> device_;
    LineInput input_;
    std::shared_ptr<PosixMessagePump> pump_;
};

} // namespace kel
