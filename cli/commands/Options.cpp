#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/FailureSentence.h"
#include "cli/LoadedSettings.h"
#include "cli/ModelLookup.h"
#include "cli/TextOutput.h"
#include "platform/Registry.h"

#include <iostream>
#include <optional>

namespace kel {

namespace {

struct Arguments {
    std::string model;
    std::string settings;
    std::string format;
};

/// Tells reports while the window is open. A search comes past ports that are not there; these are no news.
class SpokenReports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        if (report.ErrorNumber == static_cast<Int32>(FailureCode::InvalidPortNumber))
            return 0;
        std::cerr << "kelreader: " << failureSentence(reportedFailure(report)) << std::endl;
        any = true;
        return 0;
    }

    bool any = false;
};

/// Puts the reports into words for as long as it lives.
class Reporting {
public:
    explicit Reporting(clsKELReader& reader) : reader_(reader) { reader_.SetError(reports_); }
    ~Reporting() { reader_.SetError(nullptr); }
    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;

    [[nodiscard]] int status() const { return reports_->any ? kFailedStatus : kDoneStatus; }

private:
    clsKELReader& reader_;
    std::shared_ptr<SpokenReports> reports_ = std::make_shared<SpokenReports>();
};

/// What the window shows at first: what is kept, and the model's defaults where another model is asked for.
void prepare(clsKELReader& reader, const std::optional<RegistryPath>& key, const std::string& model)
{
    if (key) {
        for (const ReportedFailure& failure : loadSettings(reader, *key))
            std::cerr << "kelreader: " << failureSentence(failure) << std::endl;
    }
    if (model.empty())
        return;
    const kelReaderType wanted = modelNamed(model);
    if (!key || reader.ReaderType() != wanted)
        reader.LoadDefaults(wanted);
}

int run(const Arguments& arguments)
{
    std::optional<RegistryPath> key;
    if (!arguments.settings.empty())
        key = keyNamed(arguments.settings);
    clsKELReader reader;
    prepare(reader, key, arguments.model);
    const Reporting reporting(reader);
    if (!reader.ShowOptions()) {
        if (reporting.status() == kDoneStatus)
            std::cerr << "kelreader: Cancelled; nothing was changed." << std::endl;
        return reporting.status();
    }
    if (key)
        reader.SaveSettings(key->hive, key->subKey);
    TextOutput().writeOrFail(settingsText(reader, arguments.format == "json"));
    return reporting.status();
}

} // namespace

void addOptionsCommand(Commands& commands)
{
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command = commands.add("options", "Opens the window with a reader's settings, and writes what was chosen",
                                     [arguments] { return run(*arguments); });
    command.add_option("--model", arguments->model, "The model that is chosen at first, with its defaults");
    command
        .add_option("--settings", arguments->settings, "The key whose settings are shown, and that keeps the new ones")
        ->type_name("HIVE\\SUBKEY");
    addFormat(command, arguments->format, {"table", "json"});
}

} // namespace kel
