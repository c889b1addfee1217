// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"
#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kel {
namespace {

TEST(SimulatorTable, HasNoReaderWithoutALine)
{
    for (const kelReaderType model :
         {kelReaderTypeNone, kelReaderTypeSekonicSR2300, kelReaderTypeSekonicSR3500, kelReaderTypeSekonicSR6500,
          kelReaderTypeSekonicSR1800, static_cast<kelReaderType>(99)}) {
        EXPECT_FALSE(hasSimulator(model)) << model;
        EXPECT_THROW(static_cast<void>(makeSimulator(model, {})), std::invalid_argument) << model;
    }
}

TEST(SimulatorTable, ASeedFillsTheFeederInTheShapeOfTheForm)
{
    const FormDescription form{.side1Rows = {2}, .side1Cols = {12}};
    const std::unique_ptr<Simulator> reader = makeSimulator(
        kelReaderTypePDIVMR138, {.seeded = SeededSheets{.seed = 4, .count = 1}, .form = form, .rate = Rate::Unlimited});
    DeviceBench bench(*reader);
    bench.ask("0Q+");
    EXPECT_EQ(bench.ask("8").size(), 6U); // 0A, two rows, 0D
    EXPECT_TRUE(reader->errors().empty());
}

TEST(SimulatorTable, TheShapeIsTheModelsWhereTheFormSaysNothing)
{
    EXPECT_EQ(sheetShape(kelReaderTypePDIVMR138).side1Columns, 12);
    EXPECT_EQ(sheetShape(kelReaderTypePDIVMR138, {.side1Rows = {7}}).side1Rows, 7);
    EXPECT_EQ(sheetShape(kelReaderTypePDIVMR138, {.side1Rows = {7}}).side1Columns, 12);
}

TEST(SimulatorTable, RefusesAnUnknownSettingAndNamesTheKnown)
{
    try {
        static_cast<void>(makeSimulator(kelReaderTypePDIVMR138, {.settings = {{"treshold", "200"}}}));
        FAIL();
    } catch (const std::invalid_argument& error) {
        EXPECT_EQ(std::string(error.what()), "unknown setting treshold; this model knows feed-ms, high-bits, line, "
                                             "noise, status1, status2, threshold");
    }
}

} // namespace
} // namespace kel
