// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineControl.h"

#include <functional>
#include <memory>
#include <string>

namespace kel {

class WindowsMessagePump;

/// A device of this process, such as a simulated reader, that the calling thread's serial controls open by its name as
/// they would a port of the system.
class LineInProcess {
public:
    using Opening =
        std::function<std::unique_ptr<OpenLine>(const LineParameters&, std::shared_ptr<WindowsMessagePump>)>;

    /// There for as long as the object lives, on the thread that makes it.
    LineInProcess(std::string name, Opening opening);
    ~LineInProcess();
    LineInProcess(const LineInProcess&) = delete;
    LineInProcess& operator=(const LineInProcess&) = delete;

    /// The thread's device of a name; null if it has none.
    [[nodiscard]] static const LineInProcess* named(const std::string& name);

    /// The open line, which the pump serves.
    [[nodiscard]] std::unique_ptr<OpenLine> open(const LineParameters& parameters,
                                                 std::shared_ptr<WindowsMessagePump> pump) const
    {
        return opening_(parameters, std::move(pump));
    }

private:
    std::string name_;
    Opening opening_;
};

} // namespace kel
