// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderPrinter.h"

#include "tests/profiles/ExpectedCatalogue.h"

#include <gtest/gtest.h>

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

using Presence = ExpectedPrinter::Kind;

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
    const ExpectedCatalogue expected;
    for (const auto& [name, model] : expected.models()) {
        const bool can = model.Printer.Presence == Presence::Optional;
        EXPECT_EQ(enabledPrinterOf(model.type()).Enabled(), Boolean(can)) << name;
    }
}

TEST(PrinterTest, ModelsWithoutPrinterTurnItOffAndOthersLeaveIt)
{
    const ExpectedCatalogue expected;
    for (const auto& [name, model] : expected.models()) {
        clsKELReaderPrinter printer = enabledPrinterOf(2);
        printer.SetType(model.type());
        printer.Enabled(True);
        EXPECT_EQ(printer.Enabled(), Boolean(model.Printer.Presence != Presence::Never)) << name;
        printer.Enabled(False);
        EXPECT_EQ(printer.Enabled(), Boolean(model.Printer.Presence == Presence::Ignored)) << name;
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
    const ExpectedCatalogue expected;
    for (const auto& [name, model] : expected.models()) {
        EXPECT_EQ(printerOf(model.type()).BufferCount(), model.Printer.Lines) << name;
        EXPECT_EQ(printerOf(model.type()).Distance(), model.Printer.Lines == 3 ? 245 : 0) << name;
    }
    for (const Int32 lType : {Int32{-1}, kReaderTypeCount})
        EXPECT_EQ(printerOf(lType).BufferCount(), 0) << lType;
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

TEST(PrinterTest, BoundsOfEveryModel)
{
    const ExpectedCatalogue expected;
    for (const auto& [name, model] : expected.models()) {
        const clsKELReaderPrinter printer = enabledPrinterOf(model.type());
        EXPECT_EQ(printer.MinPosition(), model.Printer.MinPosition) << name;
        EXPECT_EQ(printer.MaxPosition(), model.Printer.MaxPosition) << name;
        EXPECT_EQ(printer.MaxCharacters(), model.Printer.MaxCharacters) << name;
        EXPECT_EQ(printerOf(model.type()).MinPosition(), -1) << name;
        EXPECT_EQ(printerOf(model.type()).MaxPosition(), -1) << name;
        EXPECT_EQ(printerOf(model.type()).MaxCharacters(), -1) << name;
    }
}

} // namespace
} // namespace kel::test
