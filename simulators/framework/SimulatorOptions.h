// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Fault.h"
#include "simulators/framework/FormDescription.h"
#include "simulators/framework/SheetFeeder.h"
#include "simulators/framework/SiteFault.h"
#include "types/Enumerations.h"

#include <map>
#include <optional>

namespace kel {

/// How fast a simulated reader's bytes come.
enum class Rate {
    Wire,      ///< one character time each, at the speed of the line
    Unlimited, ///< all at once
};

/// All that can be said about a simulated reader.
struct SimulatorOptions {
    kelReaderType model = kelReaderTypeNone;
    SheetFeeder sheets = {};

    /// Asks `makeSimulator` for random sheets, in the shape of the model's or of the form; `sheets` come first.
    std::optional<SeededSheets> seeded = {};

    FormDescription form = {};
    Rate rate = Rate::Wire;
    std::vector<Fault> faults = {};
    std::vector<SiteFault> siteFaults = {};

    /// How the model's line is set where nobody has changed it, as "9600,N,8,1"; `makeSimulator` fills it in.
    std::string usualLine = "9600,N,8,1";

    /// Whether the reader knows the host's parity and data bits. Over a pseudo-terminal it is not, and takes them to be
    /// the usual ones.
    bool wireShows = true;

    /// What only some models know, by name. `line` is known to all: the line settings that the reader demands,
    /// as "19200,N,8,2".
    std::map<std::string, std::string> settings = {};
};

} // namespace kel
