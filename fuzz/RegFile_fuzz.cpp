// SPDX-License-Identifier: MIT
#include "failure/basError.h"
#include "formats/RegFile.h"
#include "formats/RegistryCopy.h"
#include "fuzz/Input.h"
#include "reader/clsKELReader.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <cstddef>
#include <set>
#include <string>

using namespace kel;

// Registry files that people have written or damaged, and what becomes of their values: entries that are written as
// they are read, a registry with them, and a reader's settings.

namespace {

class Reports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        constexpr Int32 kOverflow = 6;
        constexpr Int32 kTypeMismatch = 13;
        demand(report.ErrorNumber == kOverflow || report.ErrorNumber == kTypeMismatch, "a text does not fit");
        ++count_;
        return 0;
    }
    [[nodiscard]] int count() const { return count_; }

private:
    int count_ = 0;
};

void loadAndSave(const RegistryPath& key)
{
    const auto reports = std::make_shared<Reports>();
    clsKELReader reader;
    reader.SetError(reports);
    const bool loaded = static_cast<bool>(reader.LoadSettings(key.hive, key.subKey));
    demand(loaded == (reports->count() == 0), "what does not fit is reported");
    const int before = reports->count();
    demand(reader.SaveSettings(key.hive, key.subKey), "settings can be saved");
    demand(reader.LoadSettings(key.hive, key.subKey), "what was saved can be loaded");
    demand(reports->count() == before, "and nothing is reported");
    reader.SetError(nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    std::vector<RegFileEntry> entries;
    try {
        entries = parseRegFile(Input(data, size).text());
    } catch (const RegFileError& error) {
        demand(std::string(error.what()).starts_with("Line "), "a refusal names the line");
        return 0;
    }
    const std::string written = regFileBytes(entries);
    demand(regFileBytes(parseRegFile(written)) == written, "a file is written as it is read");

    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    static_cast<void>(applyRegistryEntries(machine.registry(), entries));
    for (const RegFileEntry& entry : entries)
        static_cast<void>(registryEntries(machine.registry(), entry.key));
    if (!entries.empty())
        loadAndSave(entries.back().key);
    return 0;
}
