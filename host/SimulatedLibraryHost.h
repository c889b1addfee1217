// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace kel::host {

/// The simulated library of the USB readers' maker, laid out for other processes: a link to it, beside the link the
/// state that the library takes when it is loaded under that name, and what it then writes down. Every process that
/// loads it finds the whole pile of sheets. All of it is gone with the object.
class SimulatedLibraryHost {
public:
    /// Makes the link at a place, where only another link may be, or in a folder of its own.
    /// std::filesystem::filesystem_error if that cannot be.
    explicit SimulatedLibraryHost(OmrSimulationState state, const std::filesystem::path& link = {});
    ~SimulatedLibraryHost();
    SimulatedLibraryHost(const SimulatedLibraryHost&) = delete;
    SimulatedLibraryHost& operator=(const SimulatedLibraryHost&) = delete;

    /// What is to be loaded.
    [[nodiscard]] const std::filesystem::path& library() const noexcept { return link_; }

    /// A thing that happened in the library: an entry of its log in JSON, or what its host did wrongly.
    struct News {
        bool isFault;
        std::string text;
    };

    /// What has happened since the call before.
    [[nodiscard]] std::vector<News> news();

private:
    [[nodiscard]] std::filesystem::path beside(const char* ending) const;

    std::filesystem::path folder_; // its own, or none
    std::filesystem::path link_;
    std::ifstream log_;
    std::string unfinished_; // a line whose end has not come yet
};

} // namespace kel::host
