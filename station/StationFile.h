// SPDX-License-Identifier: MIT
#pragma once

#include "host/Request.h"
#include "station/WebServer.h"
#include "store/Pauses.h"
#include "stream/StreamLink.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// A reader of a station.
struct ReaderPlan {
    std::string name{};
    host::Request request{};
    std::string batch{};   ///< empty: each session of the reader is a batch of its own
    std::string content{}; ///< all that the file and the files that it names say of it, to see what has changed
};

/// What a station is to do.
struct StationPlan {
    std::string station{};
    std::filesystem::path store{};
    std::filesystem::path socket{};
    Pauses::Time firstPause{1000};
    Pauses::Time longestPause{30'000};
    std::optional<StreamAddress> stream{}; ///< where the sheets go from the store
    std::optional<WebPlan> page{};
    std::optional<WebPlan> metrics{};
    std::vector<ReaderPlan> readers{};
    std::string content{}; ///< what the file says of all but the readers
};

/// A station's file, and its mistakes: sentences with the place, without the file's name.
struct StationFile {
    StationPlan plan{};
    std::vector<std::string> faults{};
};

/// Reads a station's file and the files that it names; their names are relative to its folder.
[[nodiscard]] StationFile readStationFile(const std::filesystem::path& file);

/// The names that a station's file knows, at the top and for a reader.
[[nodiscard]] std::vector<std::string> stationKeys();
[[nodiscard]] std::vector<std::string> stationReaderKeys();

} // namespace kel
