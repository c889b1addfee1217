// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/ErrorTexts.h"

#include "TextNames.h"

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
    {"49", {text::kSsFault49}},        {"50", {text::kSsFault50}},        {"51", {text::kSsFault51}},
    {"54", {text::kSsFault54}},        {"58", {text::kSsFault58}},        {"64", {text::kSsFault64}},
    {"68", {text::kSsFault68}},        {"80", {text::kSsFault80}},        {"81", {text::kSsFault81}},
    {"112", {text::kSsFault112To118}}, {"113", {text::kSsFault112To118}}, {"115", {text::kSsFault112To118}},
    {"116", {text::kSsFault112To118}}, {"117", {text::kSsFault112To118}}, {"118", {text::kSsFault112To118}},
};

constexpr ErrorText kErrorsBelowMode2[] = {
    {"49", {text::kSsFault80}},
    {"50", {text::kSsFault50BelowMode2}},
    {"52", {text::kSsFault64}},
    {"54", {text::kSsFault51To54}},
};

constexpr ErrorText kErrorsOfMode2[] = {
    {"49", {text::kSsFault80}},     {"50", {text::kSsFault50OfMode2}}, {"52", {text::kSsFault64}},
    {"53", {text::kSsFault51To54}}, {"54", {text::kSsFault54}},        {"57", {text::kSsFault57Or68}},
    {"58", {text::kSsFault58}},     {"60", {text::kSsFault60}},
};

constexpr ErrorText kErrorsAboveMode2[] = {
    {"49", {text::kSsFault49AboveMode2}}, {"50", {text::kSsFault50AboveMode2}},
    {"51", {text::kSsFault51To54}},       {"52", {text::kSsFault58}},
    {"54", {text::kSsFault54}},           {"64", {text::kSsFault64}},
    {"68", {text::kSsFault57Or68}},       {"80", {text::kSsFault80}},
    {"81", {text::kSsFault81}},           {"119", {text::kSsFaultCode, text::kSsFaultAfterCode}},
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
