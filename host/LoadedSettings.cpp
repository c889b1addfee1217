// SPDX-License-Identifier: MIT
#include "host/LoadedSettings.h"

#include "formats/KeyLimits.h"
#include "host/Reports.h"
#include "host/UsageError.h"

namespace kel::host {

RegistryPath keyNamed(std::string_view text)
{
    if (const std::optional<RegistryPath> key = registryPath(text)) {
        if (isTooLong(*key))
            throw UsageError("A registry key is at most 2,048 bytes long and 512 names deep.");
        return *key;
    }
    throw UsageError("'" + std::string(text) +
                     "' is not a registry key; write HIVE\\SUBKEY with a hive such as HKEY_CURRENT_USER or HKCU.");
}

std::vector<Failure> loadSettings(clsKELReader& reader, const RegistryPath& key)
{
    std::vector<Failure> failures;
    const Reports reports([&](const Failure& failure) { failures.push_back(failure); });
    reader.LoadSettings(key.hive, key.subKey);
    return failures;
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

} // namespace kel::host
