#include "drivers/scanning_systems/ScannerFaults.h"

#include <algorithm>
#include <span>

namespace kel {

namespace {

struct FaultRow {
    std::string_view code;
    FaultTextSS told;
};

// The models without emulation modes: SR-410 and SR-430.
constexpr FaultRow kPlainFaults[] = {
    {"49", {384}},  {"50", {386}},  {"51", {388}},  {"54", {390}},  {"58", {392}},
    {"64", {394}},  {"68", {396}},  {"80", {398}},  {"81", {400}},  {"112", {402}},
    {"113", {402}}, {"115", {402}}, {"116", {402}}, {"117", {402}}, {"118", {402}},
};

constexpr FaultRow kFaultsBelowMode2[] = {
    {"49", {398}},
    {"50", {404}},
    {"52", {394}},
    {"54", {406}},
};

constexpr FaultRow kFaultsOfMode2[] = {
    {"49", {398}}, {"50", {408}}, {"52", {394}}, {"53", {406}},
    {"54", {390}}, {"57", {410}}, {"58", {392}}, {"60", {412}},
};

constexpr FaultRow kFaultsAboveMode2[] = {
    {"49", {414}}, {"50", {416}}, {"51", {406}}, {"52", {392}}, {"54", {390}},
    {"64", {394}}, {"68", {410}}, {"80", {398}}, {"81", {400}}, {"119", {418, TextNumber(420)}},
};

std::span<const FaultRow> faultTable(kelReaderType eReaderType, Int16 iEmulationMode)
{
    if (eReaderType == kelReaderTypeScanningSystemsSR410 || eReaderType == kelReaderTypeSekonicSR430)
        return kPlainFaults;
    if (iEmulationMode < 2)
        return kFaultsBelowMode2;
    if (iEmulationMode == 2)
        return kFaultsOfMode2;
    return kFaultsAboveMode2;
}

} // namespace

std::optional<FaultTextSS> faultTextSS(kelReaderType eReaderType, Int16 iEmulationMode, std::string_view sErr)
{
    const std::span<const FaultRow> table = faultTable(eReaderType, iEmulationMode);
    const auto row =
        std::find_if(table.begin(), table.end(), [&](const FaultRow& fault) { return fault.code == sErr; });
    if (row == table.end())
        return std::nullopt;
    return row->told;
}

} // namespace kel
