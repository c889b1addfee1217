// SPDX-License-Identifier: MIT
#pragma once

#include "station/Station.h"
#include "station/StationFeed.h"
#include "station/WebServer.h"

#include <filesystem>
#include <functional>
#include <string>

namespace kel {

/// The page of a station: its contents by their paths. Any thread may ask.
class StationPage {
public:
    /// `station` returns the state of the station; any thread may call it.
    StationPage(std::function<StationState()> station, std::filesystem::path store);

    [[nodiscard]] WebAnswer answer(const WebRequest& request);

    /// Ends the streams of all watchers.
    void end() { feed_.end(); }

    /// The state of the station, with its watchers.
    [[nodiscard]] StationState state() const;

private:
    [[nodiscard]] WebAnswer answerTo(const WebRequest& request);
    [[nodiscard]] std::string stateText() const;
    [[nodiscard]] WebAnswer events();
    [[nodiscard]] WebAnswer sheets(const WebRequest& request) const;
    [[nodiscard]] WebAnswer picture(const std::string& name) const;
    [[nodiscard]] WebAnswer csv(const WebRequest& request) const;

    std::function<StationState()> station_;
    std::filesystem::path store_;
    StationFeed feed_;
};

} // namespace kel
