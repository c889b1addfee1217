// SPDX-License-Identifier: MIT
#include "UsbReaderTest.h"

#include "drivers/sekonic_usb/basSekonicSR.h"

#include <gmock/gmock.h>

namespace kel::sekonic_usb_test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr TextNumber kReadTitle = 196;

class SekonicUsbRead : public UsbReaderTest {
protected:
    SekonicUsbRead()
    {
        library.markOf = [](Int32 side, Int32 index) { return static_cast<Byte>((index + 100 * side) % 251); };
    }

    void SetUp() override
    {
        UsbReaderTest::SetUp();
        reader.Side1TimingMarks(-1);
        reader.Side2TimingMarks(-1);
    }

    /// Nothing was stored by a read that failed.
    void expectNothingStored()
    {
        EXPECT_FALSE(reader.side1().isDimensioned());
        EXPECT_FALSE(reader.side2().isDimensioned());
        EXPECT_FALSE(reader.BarcodeArray().isDimensioned());
    }
};

TEST_F(SekonicUsbRead, TakesOneSideInOrder)
{
    EXPECT_EQ(ReadPageSR(reader, 12), True);
    EXPECT_THAT(library.calls, ElementsAre("OMR_GetNumberOfColumnsToRead", "OMR_FeedSheet", "OMR_GetLastError",
                                           "OMR_GetMarks 0 12 200 48"));
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_EQ(reader.Side1TimingMarks(), 200);
    EXPECT_EQ(reader.side1()(1, 1), 1);
    EXPECT_EQ(reader.side1()(1, 48), 48);
    EXPECT_EQ(reader.side1()(2, 1), 49);
    EXPECT_EQ(reader.side1()(200, 48), 9600 % 251);
}

TEST_F(SekonicUsbRead, LeavesTheBackEmptyOnOneSidedReads)
{
    EXPECT_EQ(ReadPageSR(reader, 0), True);
    EXPECT_EQ(reader.Side2TimingMarks(), -1);
    EXPECT_EQ(reader.side2(), MarkArray(200, 48));
    EXPECT_EQ(reader.BarcodeArray(), TextArray(0, 0));
}

TEST_F(SekonicUsbRead, StoresTheRowsThatWereDelivered)
{
    library.deliveredRows[0] = 63;
    EXPECT_EQ(ReadPageSR(reader, 0), True);
    EXPECT_EQ(reader.Side1TimingMarks(), 63);
    EXPECT_EQ(reader.side1()(63, 48), 63 * 48 % 251);
    EXPECT_EQ(reader.side1()(64, 1), 0);
    EXPECT_EQ(reader.side1().rows(), 200);
}

TEST_F(SekonicUsbRead, GoesByTheColumnsThatTheLibraryTells)
{
    library.columns = 40;
    library.deliveredRows[0] = 2;
    EXPECT_EQ(ReadPageSR(reader, 0), True);
    EXPECT_THAT(library.calls, Contains("OMR_GetMarks 0 0 200 40"));
    EXPECT_EQ(reader.side1()(2, 1), 41);
    EXPECT_EQ(reader.side1()(1, 41), 0);
}

TEST_F(SekonicUsbRead, HandsTheThresholdOnUnchanged)
{
    for (const Int32 threshold : {0, -1, 32767, 70000}) {
        library.calls.clear();
        EXPECT_EQ(ReadPageSR(reader, threshold), True);
        EXPECT_EQ(library.calls.back(), "OMR_GetMarks 0 " + std::to_string(threshold) + " 200 48");
    }
}

TEST_F(SekonicUsbRead, TakesBothSidesOfTwoSidedForms)
{
    makeDuplex();
    library.deliveredRows[0] = 63;
    library.deliveredRows[1] = 62;
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_THAT(library.calls, ElementsAre("OMR_GetNumberOfColumnsToRead", "OMR_FeedSheet", "OMR_GetLastError",
                                           "OMR_GetMarks 0 9 200 48", "OMR_GetMarks 1 9 200 48"));
    EXPECT_EQ(reader.Side1TimingMarks(), 63);
    EXPECT_EQ(reader.Side2TimingMarks(), 62);
    EXPECT_EQ(reader.side2()(1, 1), 101);
    EXPECT_EQ(reader.side2()(62, 48), (62 * 48 + 100) % 251);
    EXPECT_EQ(reader.side2()(63, 1), 0);
}

TEST_F(SekonicUsbRead, TakesOneSideUnlessReaderAndFormHaveTwo)
{
    for (const bool duplex : {false, true}) {
        library.calls.clear();
        reader.settings().Duplex = duplex;
        reader.settings().DuplexForm = !duplex;
        EXPECT_EQ(ReadPageSR(reader, 0), True);
        EXPECT_THAT(library.calls, Not(Contains(StartsWith("OMR_GetMarks 1"))));
        EXPECT_EQ(reader.Side2TimingMarks(), -1);
    }
}

TEST_F(SekonicUsbRead, ReadsOnAfterThreeCodes)
{
    for (const Int32 code : {0x40120003, 0x41120003, 0x42120003}) {
        library.results["OMR_GetLastError"] = {code};
        EXPECT_EQ(ReadPageSR(reader, 0), True);
    }
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbRead, EndsQuietlyAfterOneCode)
{
    library.results["OMR_GetLastError"] = {0x40110000};
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_EQ(library.calls.back(), "OMR_GetLastError");
    expectNothingStored();
}

TEST_F(SekonicUsbRead, ReportsEveryOtherCode)
{
    library.results["OMR_GetLastError"] = {0x40110001};
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    ASSERT_EQ(reports().size(), 1U);
    EXPECT_EQ(reports()[0].ErrorNumber, 40110001);
    EXPECT_EQ(reports()[0].ErrorSource, "basSekonicSR.ReturnErrorSR");
    EXPECT_EQ(reports()[0].ErrorDescription, VBLM_RTString(522));
    // The sheet is left where it is.
    EXPECT_EQ(library.calls.back(), "OMR_GetLastError");
    expectNothingStored();
}

TEST_F(SekonicUsbRead, GoesByTheLastErrorAndNotByTheFeedsResult)
{
    library.results["OMR_FeedSheet"] = {-1};
    EXPECT_EQ(ReadPageSR(reader, 0), True);
}

TEST_F(SekonicUsbRead, ReportsAFrontThatIsNotDelivered)
{
    makeDuplex();
    library.results["OMR_GetMarks"] = {0};
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    expectFault(494, kReadTitle, "ReadPageSR");
    EXPECT_EQ(library.calls.back(), "OMR_GetMarks 0 0 200 48");
    EXPECT_EQ(reader.Side1TimingMarks(), -1);
    expectNothingStored();
}

TEST_F(SekonicUsbRead, ReportsABackThatIsNotDelivered)
{
    makeDuplex();
    library.deliveredRows[0] = 63;
    library.results["OMR_GetMarks"] = {1, 0};
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    expectFault(496, kReadTitle, "ReadPageSR");
    EXPECT_EQ(library.calls.back(), "OMR_GetMarks 1 0 200 48");
    EXPECT_EQ(reader.Side1TimingMarks(), 63);
    EXPECT_EQ(reader.Side2TimingMarks(), -1);
    expectNothingStored();
}

TEST_F(SekonicUsbRead, FailsAtARowTooMany)
{
    library.deliveredRows[0] = 201;
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    expectRuntimeFailure(9, "ReadPageSR");
    EXPECT_EQ(reader.Side1TimingMarks(), -1);
    expectNothingStored();
}

TEST_F(SekonicUsbRead, FailsAtAColumnTooManyAndTakesNoHarmFromWhatTheLibraryWrote)
{
    library.columns = 60;
    library.bytesWritten = 200 * 60;
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    expectRuntimeFailure(9, "ReadPageSR");
    expectNothingStored();
}

TEST_F(SekonicUsbRead, FailsWhereTheNumberOfBytesOverflows)
{
    library.deliveredRows[0] = 65536;
    library.deliveredColumns[0] = 65536;
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    expectRuntimeFailure(6, "ReadPageSR");
}

TEST_F(SekonicUsbRead, ReadsNothingWhereTheLibraryTellsNoColumns)
{
    for (const Int32 columns : {0, -1}) {
        library.columns = columns;
        EXPECT_EQ(ReadPageSR(reader, 0), True);
        EXPECT_EQ(reader.Side1TimingMarks(), 0);
        EXPECT_EQ(reader.side1(), MarkArray(200, 48));
    }
}

TEST_F(SekonicUsbRead, FinishesTheSheetDuringWhichTheStopCame)
{
    library.onCall = [&](const std::string& function) {
        if (function == "OMR_FeedSheet")
            reader.CancelScan(True);
    };
    EXPECT_EQ(ReadPageSR(reader, 0), True);
    EXPECT_EQ(reader.Side1TimingMarks(), 200);
    EXPECT_EQ(reader.CancelScan(), True);
}

TEST_F(SekonicUsbRead, ReportsALibraryThatLacksAFunction)
{
    library.failures.insert({"OMR_FeedSheet", RuntimeFailure(453, "Can't find it")});
    EXPECT_EQ(ReadPageSR(reader, 0), False);
    expectRuntimeFailure(453, "ReadPageSR");
    expectNothingStored();
}

class SekonicUsbBarcodes : public SekonicUsbRead {
protected:
    void SetUp() override
    {
        SekonicUsbRead::SetUp();
        addZone(300, 50);
        addZone(100, 30);
    }
};

TEST_F(SekonicUsbBarcodes, AreAskedForBeforeTheFeedAndFetchedBehindTheMarks)
{
    makeDuplex();
    library.readCount = 2;
    library.barcodes = {"123", "4567"};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_THAT(library.calls,
                ElementsAre("OMR_SetBarCodeArea 100 80", "OMR_SetBarCodeReadType 23", "OMR_SetBarCodeCheckDigit 97 0",
                            "OMR_SetBarCodeCheckDigit 98 0", "OMR_SetBarCodeCheckDigit 99 0",
                            "OMR_GetNumberOfColumnsToRead", "OMR_FeedSheet", "OMR_GetLastError",
                            "OMR_GetMarks 0 9 200 48", "OMR_GetMarks 1 9 200 48", "OMR_GetBarcodeInfo",
                            "OMR_GetBarcodeData 1 64 512", "OMR_GetBarcodeData 2 64 512"));
    EXPECT_EQ(reader.BarcodeArray(), TextArray::of(1, {"123", "4567"}));
}

TEST_F(SekonicUsbBarcodes, AreReadTheSameWayWhateverTheZonesAskFor)
{
    reader.Barcodes()->Item(1)->Symbology(kelBarcodeTypeCode93);
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_THAT(library.calls, Contains("OMR_SetBarCodeReadType 23"));
}

TEST_F(SekonicUsbBarcodes, DoNotNeedTheCheckDigits)
{
    library.results["OMR_SetBarCodeCheckDigit"] = {0, 0, 0};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(library.calls.back(), "OMR_GetBarcodeInfo");
}

TEST_F(SekonicUsbBarcodes, AreNotReadWhereTheAreaIsRefused)
{
    library.results["OMR_SetBarCodeArea"] = {0};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_THAT(library.calls, ElementsAre("OMR_SetBarCodeArea 100 80", "OMR_GetNumberOfColumnsToRead", "OMR_FeedSheet",
                                           "OMR_GetLastError", "OMR_GetMarks 0 9 200 48"));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbBarcodes, AreNotReadWhereTheSymbologiesAreRefused)
{
    library.results["OMR_SetBarCodeReadType"] = {0};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_THAT(library.calls,
                ElementsAre("OMR_SetBarCodeArea 100 80", "OMR_SetBarCodeReadType 23", "OMR_GetNumberOfColumnsToRead",
                            "OMR_FeedSheet", "OMR_GetLastError", "OMR_GetMarks 0 9 200 48"));
}

TEST_F(SekonicUsbBarcodes, AreNotReadUnlessTheyAreWantedAndThereAreZones)
{
    reader.settings().Barcode = False;
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    reader.settings().Barcode = True;
    reader.Barcodes()->RemoveAll();
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_THAT(library.calls, Not(Contains(::testing::ContainsRegex("Bar[Cc]ode"))));
    EXPECT_EQ(reader.BarcodeArray(), TextArray(0, 0));
}

TEST_F(SekonicUsbBarcodes, AreOneEmptyElementWhereTheLibraryTellsNone)
{
    library.barcodes = {"123"};
    library.settingCount = 4;
    for (const Int32 count : {0, -1}) {
        library.readCount = count;
        EXPECT_EQ(ReadPageSR(reader, 9), True);
        EXPECT_EQ(library.calls.back(), "OMR_GetBarcodeInfo");
        EXPECT_EQ(reader.BarcodeArray(), TextArray(0, 0));
    }
    library.readCount = 1;
    library.results["OMR_GetBarcodeInfo"] = {0};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(library.calls.back(), "OMR_GetBarcodeInfo");
    EXPECT_EQ(reader.BarcodeArray(), TextArray(0, 0));
}

TEST_F(SekonicUsbBarcodes, StayEmptyWhereTheLibraryDoesNotDeliverOne)
{
    library.readCount = 3;
    library.barcodes = {"123", "456", "789"};
    library.results["OMR_GetBarcodeData"] = {1, 0, -1};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(reader.BarcodeArray(), TextArray::of(1, {"123", "", "789"}));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbBarcodes, AreEmptyWithoutALength)
{
    library.readCount = 1;
    library.barcodes = {"123"};
    for (const Int32 length : {0, -3}) {
        library.barcodeLength = length;
        EXPECT_EQ(ReadPageSR(reader, 9), True);
        EXPECT_EQ(reader.BarcodeArray(), TextArray::of(1, {""}));
    }
}

TEST_F(SekonicUsbBarcodes, AreAsLongAsTheLibraryTellsAndNoLongerThanTheArray)
{
    library.readCount = 1;
    library.barcodes = {std::string(512, 'x')};
    library.barcodeLength = 513;
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(reader.BarcodeArray()(1), std::string(512, 'x'));
    library.barcodeLength = 2;
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(reader.BarcodeArray()(1), "xx");
    // After a short text the array is empty.
    library.barcodes = {"ab"};
    library.barcodeLength = 4;
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(reader.BarcodeArray()(1), std::string("ab\0\0", 4));
}

TEST_F(SekonicUsbBarcodes, KeepEveryByte)
{
    library.readCount = 1;
    library.barcodes = {std::string("\xE9\x00\x01\xFF", 4)};
    EXPECT_EQ(ReadPageSR(reader, 9), True);
    EXPECT_EQ(reader.BarcodeArray()(1), std::string("\xE9\x00\x01\xFF", 4));
}

TEST_F(SekonicUsbBarcodes, FailWithTheZoneThatIsNothing)
{
    reader.Barcodes()->Add(nullptr);
    EXPECT_EQ(ReadPageSR(reader, 9), False);
    expectRuntimeFailure(91, "ReadPageSR");
    EXPECT_THAT(library.calls, IsEmpty());
}

} // namespace
} // namespace kel::sekonic_usb_test
