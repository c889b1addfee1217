// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace kel::host {

/// The simulated library of the USB readers' maker, prepared for other processes: a link to it, and beside the link the
/// state that the library loads under that name, and its log. Every process that loads it finds all the sheets. The
/// object removes all of it when it ends.
class SimulatedLibraryHost {
public:
    /// Creates the link at a path, where at most another link may exist, or in a folder of its own.
    /// std::filesystem::filesystem_error if that is not possible.
    explicit SimulatedLibraryHost(OmrSimulationState state, const std::filesystem::path& link = {});
    ~SimulatedLibraryHost();
    SimulatedLibraryHost(const SimulatedLibraryHost&) = delete;
    SimulatedLibraryHost& operator=(const SimulatedLibraryHost&) = delete;

    /// The library to load.
    [[nodiscard]] const std::filesystem::path& library() const noexcept { return link_; }

    /// An event in the library: an entry of its log in JSON, or an error of its host.
    struct News {
        bool isFault;
        std::string text;
    };

    /// The events since the previous call.
    [[nodiscard]] std::vector<News> news();

private:
    [[nodiscard]] std::filesystem::path beside(const char* ending) const;

    std::filesystem::path folder_; // its own, or none
    std::filesystem::path link_;
    std::ifstream log_;
    std::string unfinished_; // a line whose end has not come yet
};

} // namespace kel::host
