#include "cli/SimulatedReader.h"

#include "cli/ModelLookup.h"
#include "cli/UsageError.h"
#include "platform/Platform.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "simulators/sekonic_usb/OmrApiSimulation.h"

namespace kel {

namespace {

class ReaderBehindPty final : public SimulatedReader {
public:
    explicit ReaderBehindPty(std::unique_ptr<Simulator> reader) : reader_(std::move(reader)), host_(*reader_)
    {
        host_.start();
    }

    [[nodiscard]] std::string deviceFile() const override { return host_.deviceFile(); }

    [[nodiscard]] std::vector<std::string> end() override
    {
        host_.stop();
        host_.join();
        return reader_->errors();
    }

private:
    std::unique_ptr<Simulator> reader_;
    PtyDeviceHost host_;
};

class ReaderBehindLibrary final : public SimulatedReader {
public:
    explicit ReaderBehindLibrary(const OmrSimulationState& state) : simulation_(simulatedOmrApiFile(), state)
    {
        platform().omrApiLoader().libraryFile(simulation_.library());
    }

    [[nodiscard]] std::string deviceFile() const override { return {}; }

    [[nodiscard]] std::vector<std::string> end() override { return simulation_.report().faults; }

private:
    OmrApiSimulation simulation_;
};

} // namespace

std::unique_ptr<SimulatedReader> startSimulatedReader(const SimulatorArguments& arguments, kelReaderType model,
                                                      const ScanForm& form)
{
    if (isUsbModel(model))
        return std::make_unique<ReaderBehindLibrary>(arguments.omrState(form));
    return std::make_unique<ReaderBehindPty>(arguments.make(model, form));
}

std::filesystem::path simulatedOmrApiFile()
{
    const std::filesystem::path file = platform().process().ComponentFolder() / "libOMRAPI_simulated.so";
    if (!std::filesystem::exists(file))
        throw CommandFailure("The simulated library of the USB readers is not there: " + file.string() + ".");
    return file;
}

} // namespace kel
