// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/ErrorTexts.h"

#include "types/Text.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace kel {
namespace {

using Cells = std::map<std::string, ErrorTextSS>;

/// All codes of one, two and three digits, the ones that are told and the ones that are not.
void expectCells(kelReaderType eReaderType, int mode, const Cells& cells)
{
    for (int code = 0; code <= 999; ++code) {
        const std::string sErr = CStr(code);
        const auto cell = cells.find(sErr);
        const auto told = errorTextSS(eReaderType, static_cast<Int16>(mode), sErr);
        if (cell == cells.end())
            EXPECT_FALSE(told) << "code " << sErr << " mode " << mode << " type " << eReaderType;
        else
            EXPECT_TRUE(told && *told == cell->second)
                << "code " << sErr << " mode " << mode << " type " << eReaderType;
    }
    for (const char* sErr : {"", "4", "049", " 49", "49 ", "x", "-1"})
        EXPECT_FALSE(errorTextSS(eReaderType, static_cast<Int16>(mode), sErr)) << sErr;
}

const Cells kPlain = {
    {"49", {384}},  {"50", {386}},  {"51", {388}},  {"54", {390}},  {"58", {392}},
    {"64", {394}},  {"68", {396}},  {"80", {398}},  {"81", {400}},  {"112", {402}},
    {"113", {402}}, {"115", {402}}, {"116", {402}}, {"117", {402}}, {"118", {402}},
};
const Cells kBelow2 = {{"49", {398}}, {"50", {404}}, {"52", {394}}, {"54", {406}}};
const Cells kMode2 = {
    {"49", {398}}, {"50", {408}}, {"52", {394}}, {"53", {406}},
    {"54", {390}}, {"57", {410}}, {"58", {392}}, {"60", {412}},
};
const Cells kAbove2 = {
    {"49", {414}}, {"50", {416}}, {"51", {406}}, {"52", {392}}, {"54", {390}},
    {"64", {394}}, {"68", {410}}, {"80", {398}}, {"81", {400}}, {"119", {418, TextNumber(420)}},
};

TEST(ErrorTextsSS, ModelsWithoutModesHaveOneTable)
{
    for (const int mode : {-1, 0, 1, 2, 3}) {
        expectCells(kelReaderTypeScanningSystemsSR410, mode, kPlain);
        expectCells(kelReaderTypeSekonicSR430, mode, kPlain);
    }
}

TEST(ErrorTextsSS, TheModeChoosesTheTableOfTheOthers)
{
    for (const kelReaderType eReaderType :
         {kelReaderTypeScanningSystemsSR601, kelReaderTypeScanningSystemsSR607, kelReaderTypeScanningSystemsSR700351,
          kelReaderTypeScanningSystemsSR700352}) {
        for (const int mode : {-32768, -1, 0, 1})
            expectCells(eReaderType, mode, kBelow2);
        expectCells(eReaderType, 2, kMode2);
        for (const int mode : {3, 4, 32767})
            expectCells(eReaderType, mode, kAbove2);
    }
}

} // namespace
} // namespace kel
