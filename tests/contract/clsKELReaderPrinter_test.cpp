// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderPrinter.h"

#include "types/Text.h"

#include <gtest/gtest.h>

#include <map>

namespace kel::test {
namespace {

clsKELReaderPrinter printerOf(Int32 lType)
{
    clsKELReaderPrinter printer;
    printer.SetType(static_cast<kelReaderType>(lType));
    return printer;
}

clsKELReaderPrinter enabledPrinterOf(Int32 lType)
{
    clsKELReaderPrinter printer = printerOf(lType);
    printer.Enabled(True);
    return printer;
}

/// Models as "2-6,25": every number named and every one in a range named.
std::map<Int32, bool> modelSet(const std::string& text)
{
    std::map<Int32, bool> models;
    for (const std::string& piece : split(text, ',')) {
        const auto ends = split(piece, '-');
        const auto first = static_cast<Int32>(Val(ends.front()));
        const auto last = static_cast<Int32>(Val(ends.back()));
        for (Int32 lType = first; lType <= last; ++lType)
            models[lType] = true;
    }
    return models;
}

TEST(PrinterTest, ANewPrinterIsOff)
{
    const clsKELReaderPrinter printer;
    EXPECT_EQ(printer.Enabled(), False);
    EXPECT_EQ(printer.Active(), False);
    EXPECT_EQ(printer.Initialized(), False);
    EXPECT_EQ(printer.Distance(), 0);
    EXPECT_EQ(printer.Buffer1() + printer.Buffer2() + printer.Buffer3(), "");
}

TEST(PrinterTest, ModelsThatCanBeEnabled)
{
    const auto can = modelSet("2-17,25-34,36");
    for (Int32 lType = 0; lType < kReaderTypeCount; ++lType)
        EXPECT_EQ(enabledPrinterOf(lType).Enabled(), Boolean(can.contains(lType))) << lType;
}

TEST(PrinterTest, ModelsWithoutPrinterTurnItOffAndOthersLeaveIt)
{
    const auto off = modelSet("1,18,20-23,35,37,41");
    const auto untouched = modelSet("0,19,24,38-40");
    for (Int32 lType = 0; lType < kReaderTypeCount; ++lType) {
        clsKELReaderPrinter printer = enabledPrinterOf(2);
        printer.SetType(static_cast<kelReaderType>(lType));
        printer.Enabled(True);
        EXPECT_EQ(printer.Enabled(), Boolean(!off.contains(lType))) << lType;
        printer.Enabled(False);
        EXPECT_EQ(printer.Enabled(), Boolean(untouched.contains(lType))) << lType;
    }
}

TEST(PrinterTest, TheModelIsSetBeforeItIsEnabled)
{
    EXPECT_EQ(enabledPrinterOf(18).Enabled(), False);
    EXPECT_EQ(enabledPrinterOf(24).Enabled(), False);
}

TEST(PrinterTest, ActiveNeedsAnEnabledPrinter)
{
    clsKELReaderPrinter printer = printerOf(13);
    printer.Active(True);
    printer.Enabled(True);
    EXPECT_EQ(printer.Active(), False);
    printer.Active(True);
    EXPECT_EQ(printer.Active(), True);
    printer.Enabled(False);
    EXPECT_EQ(printer.Active(), False);
    printer.Enabled(True);
    EXPECT_EQ(printer.Active(), True) << "the flag itself was kept";
}

TEST(PrinterTest, PrintLines)
{
    const auto three = modelSet("7-10,30,33,34,36");
    const auto one = modelSet("2-6,11-17,25-29,31,32");
    for (Int32 lType = -1; lType <= kReaderTypeCount; ++lType) {
        const Int16 expected = three.contains(lType) ? Int16{3} : one.contains(lType) ? Int16{1} : Int16{0};
        EXPECT_EQ(printerOf(lType).BufferCount(), expected) << lType;
        EXPECT_EQ(printerOf(lType).Distance(), expected == 3 ? 245 : 0) << lType;
    }
}

TEST(PrinterTest, TheDistanceStaysUntilAModelOfThreeLinesSetsIt)
{
    clsKELReaderPrinter printer = printerOf(30);
    EXPECT_EQ(printer.Distance(), 245);
    printer.Distance(12);
    printer.SetType(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(printer.Distance(), 12);
    printer.SetType(kelReaderTypeScanningSystemsSR601);
    EXPECT_EQ(printer.Distance(), 245);
    printer.Distance(-3);
    EXPECT_EQ(printer.Distance(), -3);
}

TEST(PrinterTest, OnlyTheModelsOwnLinesCountAsFilled)
{
    clsKELReaderPrinter none = printerOf(24);
    none.Buffer1("text");
    EXPECT_EQ(none.FilledBufferCount(), 0);

    clsKELReaderPrinter one = printerOf(11);
    one.Buffer2("text");
    EXPECT_EQ(one.FilledBufferCount(), 0);
    one.Buffer1("text");
    EXPECT_EQ(one.FilledBufferCount(), 1);

    clsKELReaderPrinter three = printerOf(7);
    three.Buffer2("text");
    EXPECT_EQ(three.FilledBufferCount(), 1);
    three.Buffer1("text");
    three.Buffer3("text");
    EXPECT_EQ(three.FilledBufferCount(), 3);
}

struct Bounds {
    const char* models;
    Int32 min, max, characters;
};

TEST(PrinterTest, BoundsOfEveryModel)
{
    const Bounds table[] = {{"2-4,31,32", 0, 24, 24},    {"5", 0, 40, 40},   {"25", 0, 25, 25},
                            {"6", 10, 25, 25},           {"26", 10, 54, 54}, {"7-10,30,33,34,36", 10, 245, 41},
                            {"11-17,27-29", 0, 135, 135}};
    for (Int32 lType = 0; lType < kReaderTypeCount; ++lType) {
        Int32 min = -1, max = -1, characters = -1;
        for (const Bounds& row : table) {
            if (modelSet(row.models).contains(lType)) {
                min = row.min;
                max = row.max;
                characters = row.characters;
            }
        }
        const clsKELReaderPrinter printer = enabledPrinterOf(lType);
        EXPECT_EQ(printer.MinPosition(), min) << lType;
        EXPECT_EQ(printer.MaxPosition(), max) << lType;
        EXPECT_EQ(printer.MaxCharacters(), characters) << lType;
        EXPECT_EQ(printerOf(lType).MinPosition(), -1) << lType;
        EXPECT_EQ(printerOf(lType).MaxPosition(), -1) << lType;
        EXPECT_EQ(printerOf(lType).MaxCharacters(), -1) << lType;
    }
}

} // namespace
} // namespace kel::test
