// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "cli/RegistryValueText.h"
#include "cli/SettingsText.h"
#include "cli/UsageError.h"
#include "formats/Columns.h"
#include "formats/RegistryCopy.h"
#include "formats/StoredValue.h"
#include "host/Failure.h"
#include "host/JsonFile.h"
#include "host/LoadedSettings.h"
#include "host/PropertyTable.h"
#include "host/TextOutput.h"
#include "platform/Platform.h"
#include "reader/SettingsStore.h"
#include "types/Path.h"

#include <algorithm>

namespace kel {

namespace {

// How the key's default value, which has no name, is called; a registry file does the same.
constexpr const char* kDefaultName = "@";

struct SettingsArguments {
    std::string key;
    std::optional<std::string> name;
    std::string value;
    std::string file;
    std::string format;
};

Registry& registry()
{
    return platform().registry();
}

std::string nameOf(const SettingsArguments& arguments)
{
    return *arguments.name == kDefaultName ? "" : *arguments.name;
}

std::string shown(const std::string& name)
{
    return name.empty() ? kDefaultName : name;
}

[[noreturn]] void failToWrite(const RegistryPath& key)
{
    throw CommandFailure("The settings store cannot be written, so " + registryPathText(key) + " is unchanged.");
}

/// The key, which has to be there.
RegistryPath presentKey(const SettingsArguments& arguments)
{
    const RegistryPath key = host::keyNamed(arguments.key);
    if (!registry().exists(key.hive, key.subKey))
        throw CommandFailure("There is no key " + registryPathText(key) + ", or it may not be read.");
    return key;
}

/// The value, which has to be there.
RegistryValue presentValue(const RegistryPath& key, const std::string& name)
{
    if (std::optional<RegistryValue> value = registry().read(key.hive, key.subKey, name))
        return withoutEnd(std::move(*value));
    throw CommandFailure("The key " + registryPathText(key) + " has no value '" + shown(name) + "'.");
}

std::vector<RegFileEntry> valuesOf(const RegistryPath& key)
{
    std::vector<RegFileEntry> values;
    for (const std::string& name : registry().valueNames(key.hive, key.subKey)) {
        if (std::optional<RegistryValue> value = registry().read(key.hive, key.subKey, name))
            values.push_back({key, name, false, withoutEnd(std::move(*value))});
    }
    return values;
}

std::string valuesAsTable(const RegistryPath& key)
{
    const std::vector<RegFileEntry> values = valuesOf(key);
    std::size_t nameWidth = 0;
    std::size_t typeWidth = 0;
    for (const RegFileEntry& entry : values) {
        nameWidth = std::max(nameWidth, shown(*entry.name).size());
        typeWidth = std::max(typeWidth, registryTypeName(entry.value.type).size());
    }
    std::string text;
    for (const RegFileEntry& entry : values)
        text += padded(shown(*entry.name), nameWidth) + "  " + padded(registryTypeName(entry.value.type), typeWidth) +
                "  " + registryValueText(entry.value) + "\n";
    for (const std::string& name : registry().subKeys(key.hive, key.subKey))
        text += "[" + registryPathText(below(key, name)) + "]\n";
    return text;
}

std::string valuesAsJson(const RegistryPath& key)
{
    std::string text = "[";
    for (const RegFileEntry& entry : valuesOf(key)) {
        const Json line = {{"name", jsonValue(*entry.name)},
                           {"type", registryTypeName(entry.value.type)},
                           {"value", registryValueJson(entry.value)}};
        text += (text.size() == 1 ? "\n" : ",\n") + jsonText(line);
    }
    return text + "\n]\n";
}

int list(const SettingsArguments& arguments)
{
    const RegistryPath key = presentKey(arguments);
    host::TextOutput().writeOrFail(arguments.format == "json" ? valuesAsJson(key) : valuesAsTable(key));
    return kDoneStatus;
}

int get(const SettingsArguments& arguments)
{
    const RegistryValue value = presentValue(presentKey(arguments), nameOf(arguments));
    host::TextOutput().writeOrFail(registryValueText(value) + "\n");
    return kDoneStatus;
}

int set(const SettingsArguments& arguments)
{
    const RegistryPath key = host::keyNamed(arguments.key);
    std::string value = arguments.value;
    if (!SettingsStore(key.hive, key.subKey).SaveValue(nameOf(arguments), value))
        failToWrite(key);
    return kDoneStatus;
}

int remove(const SettingsArguments& arguments)
{
    const RegistryPath key = host::keyNamed(arguments.key);
    if (!arguments.name && key.subKey.empty())
        throw host::UsageError("A hive as a whole cannot be deleted; name a key below it.");
    presentKey(arguments);
    std::optional<std::string> name;
    if (arguments.name) {
        name = nameOf(arguments);
        presentValue(key, *name);
    }
    if (!registry().remove(key.hive, key.subKey, name))
        failToWrite(key);
    return kDoneStatus;
}

int exportKey(const SettingsArguments& arguments)
{
    const std::string bytes = regFileBytes(registryEntries(registry(), presentKey(arguments)));
    host::TextOutput(pathOf(arguments.file)).writeOrFail(bytes);
    return kDoneStatus;
}

std::vector<RegFileEntry> entriesOf(const std::string& file)
{
    try {
        return parseRegFile(host::readGivenFile(pathOf(file), host::kRegistryFile));
    } catch (const RegFileError& refusal) {
        throw host::UsageError("The registry file " + file + " cannot be imported. " + refusal.what());
    }
}

int import(const SettingsArguments& arguments)
{
    if (const std::optional<RegFileEntry> refused = applyRegistryEntries(registry(), entriesOf(arguments.file)))
        failToWrite(refused->key);
    return kDoneStatus;
}

int show(const SettingsArguments& arguments)
{
    clsKELReader reader;
    const std::vector<host::Failure> failures = host::loadSettings(reader, host::keyNamed(arguments.key));
    host::TextOutput().writeOrFail(settingsText(reader, arguments.format == "json"));
    for (const host::Failure& failure : failures)
        notice(host::failureSentence(failure));
    return failures.empty() ? kDoneStatus : kFailedStatus;
}

} // namespace

void addSettingsCommand(Commands& commands)
{
    const auto arguments = std::make_shared<SettingsArguments>();
    CLI::App& settings = commands.add("settings", "Shows and changes saved settings", [] { return kUsageStatus; });
    settings.require_subcommand(1);
    settings.footer("KEY is HIVE\\SUBKEY: HKEY_CURRENT_USER\\Software\\Reader, or HKCU for short. The value of the key "
                    "itself has the name @.");
    const auto add = [&](const char* name, const char* description, int (*run)(const SettingsArguments&)) -> CLI::App& {
        return commands.add(settings, name, description, [arguments, run] { return run(*arguments); });
    };
    const auto addKey = [&](CLI::App& command) {
        command.add_option("key", arguments->key, "The key, HIVE\\SUBKEY")->required()->type_name("KEY");
    };
    const auto addName = [&](CLI::App& command) {
        return command.add_option("name", arguments->name, "Name of the value")->type_name("NAME");
    };

    CLI::App& listing = add("list", "Lists the values of a key and the keys directly below it", list);
    addKey(listing);
    addFormat(listing, arguments->format, {"table", "json"});
    CLI::App& getting = add("get", "Prints one value", get);
    addKey(getting);
    addName(getting)->required();
    CLI::App& setting = add("set", "Saves a text as a value; an empty text is saved as one blank", set);
    addKey(setting);
    addName(setting)->required();
    setting.add_option("value", arguments->value, "The text")->required()->type_name("VALUE");
    CLI::App& deleting = add("delete", "Deletes a value, or a key and everything below it", remove);
    addKey(deleting);
    addName(deleting);
    CLI::App& exporting = add("export", "Exports a key and everything below it to a .reg file", exportKey);
    addKey(exporting);
    exporting.add_option("file", arguments->file, "The file")->required()->type_name("FILE");
    CLI::App& importing = add("import", "Imports a .reg file (version 5.00)", import);
    importing.add_option("file", arguments->file, "The file")->required()->type_name("FILE");
    CLI::App& showing = add("show", "Shows the 19 properties that a reader loads from a key", show);
    addKey(showing);
    addFormat(showing, arguments->format, {"table", "json"});
}

} // namespace kel
