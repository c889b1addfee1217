// SPDX-License-Identifier: MIT
#include "host/Reader.h"

#include "host/Batch.h"
#include "host/LoadedSettings.h"
#include "host/Reports.h"
#include "host/TextOutput.h"
#include "host/TraceHead.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "recording/TracingCarrier.h"
#include "recording/TracingLibrary.h"

#include <utility>

namespace kel::host {

namespace {

// The port that stands for a device which is named.
constexpr Int16 kDevicePort = 1;

} // namespace

struct Reader::State {
    explicit State(Request wanted) : request(std::move(wanted))
    {
        if (!request.device.empty() || request.simulated)
            request.port = request.port.value_or(kDevicePort);
        std::vector<Failure> refused = prepareReader(reader, request);
        if (!refused.empty())
            throw ReaderFailed(std::move(refused));
    }

    /// Makes what the reader is to be joined to. It stays for the sessions after this one.
    void connect()
    {
        if (connected)
            return;
        if (request.simulated) {
            const kelReaderType model = request.model.value_or(reader.ReaderType());
            if (request.form.empty()) {
                request.form = formOfSheets(*request.simulated, model);
                applySizes(request.form, reader);
            }
            simulated = std::make_unique<SimulatedReader>(model, *request.simulated, request.form);
        }
        if (!request.usbLibrary.empty())
            platform().omrApiLoader().libraryFile(request.usbLibrary);
        if (!request.traceFile.empty()) {
            trace = std::make_shared<TextOutput>(request.traceFile);
            reader.fComm(makeReference<TracingCarrier>(
                reader.fComm(), traceHead(request, reader),
                [file = trace](const std::string& line) { static_cast<void>(file->write(line)); }));
        }
        connected = true;
    }

    [[nodiscard]] std::string device() const { return simulated ? simulated->device() : request.device; }

    Request request;
    clsKELReader reader;
    std::unique_ptr<SimulatedReader> simulated;
    std::shared_ptr<TextOutput> trace;
    std::vector<Failure> failures;
    bool connected = false;
};

namespace {

/// What a session ties to the thread: the device instead of the reader's port, if one is named, and the trace of what a
/// USB reader's library is called for.
class Joined {
public:
    Joined(const clsKELReader& reader, const std::string& device, const std::shared_ptr<TextOutput>& trace = {})
    {
        if (!device.empty())
            override_.emplace(reader.Port(), device);
        if (trace) {
            library_.emplace(platform(), [trace](const std::string& line) { static_cast<void>(trace->write(line)); });
            scope_.emplace(*library_);
        }
    }

private:
    std::optional<PortOverride> override_;
    std::optional<TracingLibrary> library_;
    std::optional<PlatformScope> scope_;
};

} // namespace

Reader::Reader(Request request) : state_(std::make_unique<State>(std::move(request))) {}

Reader::~Reader() = default;

clsKELReader& Reader::object() noexcept
{
    return state_->reader;
}

const Form& Reader::form() const noexcept
{
    return state_->request.form;
}

void Reader::connect()
{
    state_->connect();
}

void Reader::sheetsBefore(Int32 count) noexcept
{
    state_->request.sheetsBefore = count;
}

std::string Reader::traceProblem() const
{
    return state_->trace ? state_->trace->problem() : std::string();
}

Result Reader::read(Events& events, const std::function<bool()>& stopWanted, StopAsked asked)
{
    state_->connect();
    const Joined joined(state_->reader, state_->device(), state_->trace);
    Result result = runScan(state_->reader, state_->request, events, stopWanted, asked);
    state_->failures = result.failures;
    return result;
}

Sheets Reader::sheets(OnFailure onFailure)
{
    return Sheets(*this, onFailure);
}

void Reader::reject()
{
    state_->reader.RejectPage();
}

void Reader::eject()
{
    state_->reader.EjectPage();
}

void Reader::stop()
{
    state_->reader.CancelScan(True);
}

std::optional<Int16> Reader::locate(Int16 startPort)
{
    state_->failures.clear();
    const Joined joined(state_->reader, state_->device());
    const Reports reports([this](const Failure& failure) { state_->failures.push_back(failure); });
    if (!state_->reader.Locate(startPort))
        return std::nullopt;
    return state_->reader.Port();
}

std::optional<std::string> Reader::firmware()
{
    state_->failures.clear();
    const Joined joined(state_->reader, state_->device());
    const Reports reports([this](const Failure& failure) { state_->failures.push_back(failure); });
    std::string version;
    if (!state_->reader.Firmware(version))
        return std::nullopt;
    return version;
}

const std::vector<Failure>& Reader::failures() const noexcept
{
    return state_->failures;
}

std::vector<std::string> Reader::simulatorErrors()
{
    return state_->simulated ? state_->simulated->end() : std::vector<std::string>();
}

struct Sheets::Batch {
    /// Keeps the sheet that came last.
    struct Last final : Events {
        void sheet(const Sheet& event) override { sheet_ = event; }

        Sheet sheet_;
    };

    Batch(Reader::State& ofReader, OnFailure wanted) : state(ofReader), onFailure(wanted)
    {
        state.connect();
        state.failures.clear();
        joined.emplace(state.reader, state.device(), state.trace);
        session.emplace(state.reader, state.request, last);
    }

    /// Reads the next sheet, at first after the reader's start; nothing once the batch is over.
    void goOn()
    {
        if (!session)
            return;
        if (!std::exchange(begun, true))
            session->start();
        if (session->next())
            return;
        finish();
        if (onFailure == OnFailure::Throw && !state.failures.empty())
            throw ReaderFailed(state.failures);
    }

    void finish()
    {
        if (!session)
            return;
        session->end();
        state.failures = session->failures();
        session.reset();
        joined.reset();
    }

    Reader::State& state;
    OnFailure onFailure;
    Last last;
    std::optional<Joined> joined;
    std::optional<Session> session;
    bool begun = false;
};

Sheets::Sheets(Reader& reader, OnFailure onFailure) : batch_(std::make_unique<Batch>(*reader.state_, onFailure)) {}

Sheets::~Sheets()
{
    batch_->finish();
}

Sheets::Iterator Sheets::begin()
{
    batch_->goOn();
    return Iterator(*this);
}

const Sheet& Sheets::Iterator::operator*() const
{
    return sheets_->batch_->last.sheet_;
}

Sheets::Iterator& Sheets::Iterator::operator++()
{
    sheets_->batch_->goOn();
    return *this;
}

bool Sheets::Iterator::atEnd() const
{
    return !sheets_->batch_->session;
}

} // namespace kel::host
