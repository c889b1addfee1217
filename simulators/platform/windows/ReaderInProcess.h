// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows/LineInProcess.h"
#include "simulators/platform/SimulatedLine.h"

#include <string>

namespace kel {

/// A simulated reader in the process of its host, under the real clock: the calling thread's serial controls open it by
/// a name. It has no thread: whatever is due happens when the host looks at the line, at the times at which it was due.
class ReaderInProcess {
public:
    /// The device must outlive the object.
    ReaderInProcess(std::string name, LineDevice& device);

    [[nodiscard]] const std::string& name() const noexcept { return name_; }

private:
    class Input;
    class Line;

    /// Up to the present moment.
    SimulatedLine& line();

    std::string name_;
    Moment begin_;
    SimulatedClock clock_;
    SimulatedLine line_;
    LineInProcess entry_;
};

} // namespace kel
