#include "drivers/scanning_systems/ErrorTexts.h"

#include <algorithm>
#include <span>

namespace kel {

namespace {

struct ErrorText {
    std::string_view sErr;
    ErrorTextSS text;
};

// The models without emulation modes: SR-410 and SR-430.
constexpr ErrorText kPlainErrors[] = {
    {"49", {384}},  {"50", {386}},  {"51", {388}},  {"54", {390}},  {"58", {392}},
    {"64", {394}},  {"68", {396}},  {"80", {398}},  {"81", {400}},  {"112", {402}},
    {"113", {402}}, {"115", {402}}, {"116", {402}}, {"117", {402}}, {"118", {402}},
};

constexpr ErrorText kErrorsBelowMode2[] = {
    {"49", {398}},
    {"50", {404}},
    {"52", {394}},
    {"54", {406}},
};

constexpr ErrorText kErrorsOfMode2[] = {
    {"49", {398}}, {"50", {408}}, {"52", {394}}, {"53", {406}},
    {"54", {390}}, {"57", {410}}, {"58", {392}}, {"60", {412}},
};

constexpr ErrorText kErrorsAboveMode2[] = {
    {"49", {414}}, {"50", {416}}, {"51", {406}}, {"52", {392}}, {"54", {390}},
    {"64", {394}}, {"68", {410}}, {"80", {398}}, {"81", {400}}, {"119", {418, TextNumber(420)}},
};

std::span<const ErrorText> errorTable(kelReaderType eReaderType, Int16 iEmulationMode)
{
    if (eReaderType == kelReaderTypeScanningSystemsSR410 || eReaderType == kelReaderTypeSekonicSR430)
        return kPlainErrors;
    if (iEmulationMode < 2)
        return kErrorsBelowMode2;
    if (iEmulationMode == 2)
        return kErrorsOfMode2;
    return kErrorsAboveMode2;
}

} // namespace

std::optional<ErrorTextSS> errorTextSS(kelReaderType eReaderType, Int16 iEmulationMode, std::string_view sErr)
{
    const std::span<const ErrorText> errors = errorTable(eReaderType, iEmulationMode);
    const auto row = std::ranges::find(errors, sErr, &ErrorText::sErr);
    if (row == errors.end())
        return std::nullopt;
    return row->text;
}

} // namespace kel
