// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"

#include <memory>
#include <string>
#include <vector>

namespace kel::host {

/// A running simulated reader.
class PlayedReader {
public:
    virtual ~PlayedReader() = default;

    /// The device at the end of its line; empty for a USB model.
    [[nodiscard]] virtual std::string device() const = 0;

    /// Ends it, and returns the errors of its host.
    [[nodiscard]] virtual std::vector<std::string> end() = 0;
};

/// A reader with a line.
[[nodiscard]] std::unique_ptr<PlayedReader> playedReader(std::unique_ptr<Simulator> reader);

} // namespace kel::host
