// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatorOptions.h"
#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <filesystem>

namespace kel {

/// The simulated library from outside: sets it up and asks what has happened in it. The reader's own calls go their
/// usual way, through the loader of the platform, to the same library:
///
///     OmrApiSimulation simulation("bin/libOMRAPI_simulated.so", {.sheets = {...}});
///     platform().omrApiLoader().libraryFile("bin/libOMRAPI_simulated.so");
///
/// A process has one such library and in it one reader.
class OmrApiSimulation {
public:
    /// Loads the library if need be, and sets it up. std::runtime_error if it is not there, is another library, or
    /// refuses the state.
    explicit OmrApiSimulation(std::filesystem::path library, const OmrSimulationState& state = {});

    /// Sets the library up again, and forgets what happened before.
    void configure(const OmrSimulationState& state);

    /// Lays a sheet under those in the feeder that no seed gives.
    void put(const SimulatedSheet& sheet);

    [[nodiscard]] OmrSimulationReport report() const;

    [[nodiscard]] const std::filesystem::path& library() const noexcept { return library_; }

private:
    [[nodiscard]] void* find(const char* name) const;

    std::filesystem::path library_;
    void* handle_;
};

/// The library's state that simulator options ask for: their sheets, random ones in the shape of the USB models'
/// sheets or of the form, the faults `jam` and `empty` at a sheet, and the faults of the site that apply. The known
/// settings are `columns` and `barcodeUnit`. Throws std::invalid_argument for other faults, which are those of a line,
/// and other settings.
[[nodiscard]] OmrSimulationState omrSimulationState(const SimulatorOptions& options);

/// A pile's usual shape with the USB models: both sides of 48 columns, and with barcode zones a barcode for each.
[[nodiscard]] SheetShape omrSheetShape(const FormDescription& form);

} // namespace kel
