// SPDX-License-Identifier: MIT
#include "station/StationServers.h"

#include "station/StateText.h"

#include <utility>

namespace kel {

namespace {

// Browsers ask for several things at once, and those who watch stay.
constexpr int kPageClients = 40;
constexpr int kMetricsClients = 2;

constexpr int kNoPage = 404;

std::string urlOf(const WebPlan& plan, const WebServer& server)
{
    const bool isSix = plan.address.find(':') != std::string::npos;
    return std::string(plan.certificate.empty() ? "http" : "https") + "://" +
           (isSix ? "[" + plan.address + "]" : plan.address) + ":" + std::to_string(server.port()) + "/";
}

} // namespace

StationPorts takePorts(const StationPlan& plan)
{
    StationPorts ports;
    if (plan.page)
        ports.page = openWebServer(*plan.page, kPageClients);
    if (plan.metrics)
        ports.metrics = openWebServer(*plan.metrics, kMetricsClients);
    return ports;
}

StationServers::StationServers(StationPorts ports, const StationPlan& plan, const Station& station,
                               const Station::Tell& tell)
    : station_(station), ports_(std::move(ports))
{
    if (ports_.page) {
        page_.emplace([this] { return station_.state(); }, plan.store);
        ports_.page->serve([this](const WebRequest& request) { return page_->answer(request); });
        tell("The page is at " + urlOf(*plan.page, *ports_.page) + ".");
    }
    if (ports_.metrics) {
        ports_.metrics->serve([this](const WebRequest& request) -> WebAnswer {
            if (request.path != "/metrics")
                return {.status = kNoPage, .body = "The metrics are at /metrics.\n"};
            return {.type = "text/plain; version=0.0.4; charset=utf-8", .body = stateMetrics(jsonState(state()))};
        });
        tell("The metrics are at " + urlOf(*plan.metrics, *ports_.metrics) + "metrics.");
    }
}

StationServers::~StationServers()
{
    if (page_)
        page_->end();
    ports_ = {};
}

StationState StationServers::state() const
{
    return page_ ? page_->state() : station_.state();
}

} // namespace kel
