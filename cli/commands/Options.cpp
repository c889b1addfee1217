// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "cli/SettingsText.h"
#include "host/Failure.h"
#include "host/LoadedSettings.h"
#include "host/ModelLookup.h"
#include "host/Reports.h"
#include "host/TextOutput.h"
#include "types/RuntimeFailure.h"

#include <optional>

namespace kel {

namespace {

struct OptionsArguments {
    std::string model;
    std::string settings;
    std::string format;
};

/// Prints reports while the window is open. A search tries ports that do not exist; those are not worth a report.
class Reporting {
public:
    Reporting() : reports_([this](const host::Failure& failure) { tell(failure); }) {}
    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;

    [[nodiscard]] int status() const { return any_ ? kFailedStatus : kDoneStatus; }

private:
    void tell(const host::Failure& failure)
    {
        if (failure.number == static_cast<Int32>(FailureCode::InvalidPortNumber))
            return;
        notice(host::failureSentence(failure));
        any_ = true;
    }

    bool any_ = false;
    host::Reports reports_;
};

/// What the window shows at first: what is kept, and the model's defaults where another model is asked for.
void prepare(clsKELReader& reader, const std::optional<RegistryPath>& key, const std::string& model)
{
    if (key) {
        for (const host::Failure& failure : host::loadSettings(reader, *key))
            notice(host::failureSentence(failure));
    }
    if (model.empty())
        return;
    const kelReaderType wanted = host::modelNamed(model);
    if (!key || reader.ReaderType() != wanted)
        reader.LoadDefaults(wanted);
}

int run(const OptionsArguments& arguments)
{
    std::optional<RegistryPath> key;
    if (!arguments.settings.empty())
        key = host::keyNamed(arguments.settings);
    clsKELReader reader;
    prepare(reader, key, arguments.model);
    const Reporting reporting;
    if (!reader.ShowOptions()) {
        if (reporting.status() == kDoneStatus)
            notice("Cancelled; nothing was changed.");
        return reporting.status();
    }
    if (key)
        reader.SaveSettings(key->hive, key->subKey);
    host::TextOutput().writeOrFail(settingsText(reader, arguments.format == "json"));
    return reporting.status();
}

} // namespace

void addOptionsCommand(Commands& commands)
{
    const auto arguments = std::make_shared<OptionsArguments>();
    CLI::App& command = commands.add("options", "Opens the options window and prints what the user chose",
                                     [arguments] { return run(*arguments); });
    command.add_option("--model", arguments->model, "Model to start with, with its defaults");
    command.add_option("--settings", arguments->settings, "Key to load the settings from and save them to")
        ->type_name("HIVE\\SUBKEY");
    addFormat(command, arguments->format, {"table", "json"});
}

} // namespace kel
