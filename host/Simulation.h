// SPDX-License-Identifier: MIT
#pragma once

#include "host/Form.h"
#include "types/Enumerations.h"
#include "types/Export.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kel::host {

/// The properties of a simulated reader.
struct Simulation {
    std::filesystem::path sheets{};      ///< the sheets in the feeder, as JSON; random ones if it is empty
    std::uint64_t seed = 1;              ///< of random sheets
    std::uint64_t count = 10;            ///< how many random sheets
    bool copies = false;                 ///< whether all of them are copies of the first
    std::vector<std::string> faults{};   ///< its faults: "jam@sheet=3", "late=2500@sheet=1", "unplug@byte=64"
    bool unlimited = false;              ///< the bytes come at once, not at the speed of the line
    std::vector<std::string> settings{}; ///< model-specific options: "NAME=VALUE"
};

/// The form of the sheets in a simulated reader's feeder: one page with the rows and columns of the largest.
[[nodiscard]] KEL_PUBLIC Form formOfSheets(const Simulation& simulation, kelReaderType model);

class PlayedReader;

/// A simulated reader, which runs as long as the object lives. On Linux it is at the far end of a pseudo-terminal, in a
/// thread of its own; on Windows it runs in the calling thread, and only that thread's readers can use it. A USB model
/// is simulated by a library with the functions of the readers' maker, which the calling thread's readers load from now
/// on.
class KEL_PUBLIC SimulatedReader {
public:
    /// UsageError for a value that does not fit, and std::system_error if there is no pseudo-terminal.
    explicit SimulatedReader(kelReaderType model, const Simulation& simulation = {}, const Form& form = {});
    ~SimulatedReader();
    SimulatedReader(const SimulatedReader&) = delete;
    SimulatedReader& operator=(const SimulatedReader&) = delete;

    /// The device at the end of its line; empty for a USB model.
    [[nodiscard]] std::string device() const;

    /// Ends it, and returns the host's errors that it found.
    [[nodiscard]] std::vector<std::string> end();

private:
    std::unique_ptr<PlayedReader> player_;
};

} // namespace kel::host
