// SPDX-License-Identifier: MIT
#include "host/Replay.h"

#include "host/Batch.h"
#include "host/TraceHead.h"
#include "host/UsageError.h"
#include "recording/ReportSections.h"
#include "recording/WatchfulPlatform.h"
#include "simulators/platform/ReplayPlatform.h"

namespace kel::host {

namespace {

Transcript parseOrRefuse(const std::string& text, const std::string& fileName)
{
    try {
        return parseTranscript(text);
    } catch (const TranscriptError& error) {
        throw UsageError(fileName + ", " + error.what() + ".");
    }
}

} // namespace

struct Replay::State {
    State(const Transcript& transcript, const std::string& text, const std::string& fileName)
        : request(requestOfTranscript(transcript, text, fileName)),
          carrier(std::make_shared<ReplayCarrier>(transcript)), library(transcript), ofReport(isReport(text))
    {
    }

    Request request;
    std::shared_ptr<ReplayCarrier> carrier;
    ReplayLibrary library;
    std::vector<std::string> differences{}; ///< of both
    bool ofReport;                          ///< its host also read the line during pauses
};

Replay::Replay(const std::string& text, const std::string& fileName)
    : state_(std::make_unique<State>(parseOrRefuse(sessionOfReport(text), fileName), text, fileName))
{
}

Replay::~Replay() = default;

Request& Replay::request() noexcept
{
    return state_->request;
}

Result Replay::read(Events& events, const std::function<bool()>& stopWanted)
{
    ReplayPlatform machine(platform(), *state_->carrier, state_->library);
    WatchfulPlatform watchful(machine, lookingAt(Reference<Carrier>(state_->carrier)));
    const PlatformScope scope(state_->ofReport ? static_cast<Platform&>(watchful) : machine);
    clsKELReader reader;
    reader.fComm(Reference<Carrier>(state_->carrier));
    prepareReader(reader, state_->request);
    Result result = runScan(reader, state_->request, events, [&] {
        return (stopWanted && stopWanted()) || state_->carrier->stopped() || state_->library.feedsNoMore();
    });
    state_->differences = state_->carrier->differences();
    state_->differences.insert(state_->differences.end(), state_->library.differences().begin(),
                               state_->library.differences().end());
    return result;
}

const std::vector<std::string>& Replay::differences() const noexcept
{
    return state_->differences;
}

std::string Replay::unsent() const
{
    return state_->carrier->unsent() + state_->library.unsent();
}

} // namespace kel::host
