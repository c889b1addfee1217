// SPDX-License-Identifier: MIT
#pragma once

#include "station/Station.h"
#include "station/StationFile.h"
#include "station/StationPage.h"
#include "station/WebServer.h"

#include <memory>
#include <optional>

namespace kel {

/// The open ports of a station's page and of its metrics; null if the file does not ask for them.
struct StationPorts {
    std::unique_ptr<WebServer> page{};
    std::unique_ptr<WebServer> metrics{};
};

/// host::OperationError, a sentence, if one of them cannot be opened.
[[nodiscard]] StationPorts takePorts(const StationPlan& plan);

/// A station's page and metrics, for as long as it lives.
class StationServers {
public:
    /// Says where they are. The station outlives it.
    StationServers(StationPorts ports, const StationPlan& plan, const Station& station, const Station::Tell& tell);
    ~StationServers();
    StationServers(const StationServers&) = delete;
    StationServers& operator=(const StationServers&) = delete;

    /// The station's state, with those who watch it.
    [[nodiscard]] StationState state() const;

private:
    const Station& station_;
    std::optional<StationPage> page_;
    StationPorts ports_;
};

} // namespace kel
