// SPDX-License-Identifier: MIT
#include "UsbReaderTest.h"

#include "drivers/sekonic_usb/basSekonicSR.h"

#include <gmock/gmock.h>

namespace kel::sekonic_usb_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SekonicUsbPrint : public UsbReaderTest {
protected:
    void SetUp() override
    {
        UsbReaderTest::SetUp();
        printer().Enabled(True);
        printer().Active(True);
        initialize(True);
        printer().Buffer1("one");
        printer().Buffer2("two");
        printer().Buffer3("three");
    }

    [[nodiscard]] clsKELReaderPrinter& printer() { return *reader.Printer(); }

    /// Only a read says whether the printer is initialized; a stopped one says it and does no more.
    void initialize(Boolean value)
    {
        reader.CancelScan(True);
        reader.ReadPage(value);
        reader.CancelScan(False);
    }
};

TEST_F(SekonicUsbPrint, SendsOrderPositionAndThreeLines)
{
    EXPECT_EQ(PrintSR(reader.Printer()), True);
    EXPECT_THAT(library.calls,
                ElementsAre("OMR_SetPrintOrder 1 2 3", "OMR_SetPrintPosition 245", "OMR_SetPrintString 1 'one'",
                            "OMR_SetPrintString 2 'two'", "OMR_SetPrintString 3 'three'"));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbPrint, SendsEmptyLinesToo)
{
    printer().Buffer1("");
    printer().Buffer2("");
    printer().Buffer3("");
    EXPECT_EQ(PrintSR(reader.Printer()), True);
    EXPECT_THAT(library.calls,
                ElementsAre("OMR_SetPrintOrder 1 2 3", "OMR_SetPrintPosition 245", "OMR_SetPrintString 1 ''",
                            "OMR_SetPrintString 2 ''", "OMR_SetPrintString 3 ''"));
}

TEST_F(SekonicUsbPrint, SendsAnyDistance)
{
    for (const Int16 distance : {Int16{0}, Int16{-1}, Int16{-32768}, Int16{32767}}) {
        library.calls.clear();
        printer().Distance(distance);
        EXPECT_EQ(PrintSR(reader.Printer()), True);
        EXPECT_EQ(library.calls[1], "OMR_SetPrintPosition " + std::to_string(distance));
    }
}

TEST_F(SekonicUsbPrint, SendsNothingWithoutAPrinter)
{
    EXPECT_EQ(PrintSR(nullptr), False);
    EXPECT_THAT(library.calls, IsEmpty());
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbPrint, SendsNothingUnlessThePrinterIsToPrint)
{
    printer().Active(False);
    EXPECT_EQ(PrintSR(reader.Printer()), False);
    printer().Active(True);
    printer().Enabled(False);
    EXPECT_EQ(PrintSR(reader.Printer()), False);
    printer().Enabled(True);
    initialize(False);
    EXPECT_EQ(PrintSR(reader.Printer()), False);
    initialize(True);
    printer().SetType(kelReaderTypePDIVMR138); // a model without print lines
    EXPECT_EQ(printer().Active(), True);
    EXPECT_EQ(PrintSR(reader.Printer()), False);
    EXPECT_THAT(library.calls, IsEmpty());
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbPrint, EndsAtTheFirstStepThatIsRefused)
{
    const struct {
        const char* function;
        std::deque<Int32> results;
        std::size_t calls;
    } steps[] = {
        {"OMR_SetPrintOrder", {0}, 1},     {"OMR_SetPrintPosition", {0}, 2},      {"OMR_SetPrintString", {0}, 3},
        {"OMR_SetPrintString", {1, 0}, 4}, {"OMR_SetPrintString", {1, -1, 0}, 5},
    };
    for (const auto& step : steps) {
        library.calls.clear();
        library.results.clear();
        library.results[step.function] = step.results;
        EXPECT_EQ(PrintSR(reader.Printer()), False);
        EXPECT_EQ(library.calls.size(), step.calls);
    }
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbPrint, CutsALineAtAZeroCharacter)
{
    printer().Buffer1(std::string("a\0b", 3));
    EXPECT_EQ(PrintSR(reader.Printer()), True);
    EXPECT_EQ(library.calls[2], "OMR_SetPrintString 1 'a'");
}

TEST_F(SekonicUsbPrint, ReportsAFailureAtRunTime)
{
    library.failures.insert({"OMR_SetPrintString", RuntimeFailure(453, "Can't find it")});
    EXPECT_EQ(PrintSR(reader.Printer()), False);
    expectRuntimeFailure(453, "PrintSR");
}

} // namespace
} // namespace kel::sekonic_usb_test
