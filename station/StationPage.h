// SPDX-License-Identifier: MIT
#pragma once

#include "station/Station.h"
#include "station/StationFeed.h"
#include "station/WebServer.h"

#include <filesystem>
#include <functional>
#include <string>

namespace kel {

/// The page of a station: what there is to look at, by its path. Any thread may ask.
class StationPage {
public:
    /// `station` gives the state of the station; any thread may call it.
    StationPage(std::function<StationState()> station, std::filesystem::path store);

    [[nodiscard]] WebAnswer answer(const WebRequest& request);

    /// Ends the streams of those who watch.
    void end() { feed_.end(); }

    /// The state of the station, with those who watch it.
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
