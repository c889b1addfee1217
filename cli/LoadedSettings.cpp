#include "cli/LoadedSettings.h"

#include "cli/PropertyTable.h"
#include "cli/UsageError.h"

#include <memory>

namespace kel {

namespace {

class CollectedReports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        failures.push_back(reportedFailure(report));
        return 0;
    }

    std::vector<ReportedFailure> failures;
};

} // namespace

RegistryPath keyNamed(std::string_view text)
{
    if (const std::optional<RegistryPath> key = registryPath(text))
        return *key;
    throw UsageError("'" + std::string(text) +
                     "' is no key of the registry; write HIVE\\SUBKEY with a hive such as HKEY_CURRENT_USER or HKCU.");
}

std::vector<ReportedFailure> loadSettings(clsKELReader& reader, const RegistryPath& key)
{
    const auto reports = std::make_shared<CollectedReports>();
    reader.SetError(reports);
    reader.LoadSettings(key.hive, key.subKey);
    reader.SetError(nullptr);
    return reports->failures;
}

const std::vector<std::string>& loadedProperties()
{
    static const std::vector<std::string> names = {"ReaderType",
                                                   "ReaderGrade",
                                                   "Barcode",
                                                   "Duplex",
                                                   "Feeder",
                                                   "FlowControl",
                                                   "MarkCutOff",
                                                   "MarkDiscrimination",
                                                   "Printer.Enabled",
                                                   "RecognitionThreshold",
                                                   "Rejecter",
                                                   "BaudRate",
                                                   "DataBits",
                                                   "Parity",
                                                   "Port",
                                                   "StopBits",
                                                   "SleepTime",
                                                   "Timeout",
                                                   "Windowing"};
    return names;
}

std::string settingsText(const clsKELReader& reader, bool asJson)
{
    constexpr std::size_t kNameWidth = 22;
    Json record = Json::object();
    std::string table;
    for (const std::string& name : loadedProperties()) {
        const Json value = propertyNamed(name).get(reader);
        record[name] = value;
        table += name + std::string(kNameWidth - name.size(), ' ') +
                 (value.is_string() ? value.get<std::string>() : jsonText(value)) + "\n";
    }
    return asJson ? jsonText(record) + "\n" : table;
}

} // namespace kel
