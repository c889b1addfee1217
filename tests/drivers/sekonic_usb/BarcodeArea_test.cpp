// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/BarcodeArea.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace kel {
namespace {

Reference<clsKELReaderBarcode> zone(Int16 distance, Int16 length)
{
    const auto result = makeReference<clsKELReaderBarcode>();
    result->Distance(distance);
    result->Length(length);
    return result;
}

SRBarcodeArea areaOf(std::initializer_list<std::pair<Int16, Int16>> zones)
{
    clsKELReaderBarcodes collection;
    for (const auto& [distance, length] : zones)
        collection.Add(zone(distance, length));
    return barcodeAreaSR(collection);
}

void expectArea(const SRBarcodeArea& area, Int32 start, Int32 length)
{
    EXPECT_EQ(area.lStart, start);
    EXPECT_EQ(area.lLength, length);
}

TEST(SekonicUsbBarcodeArea, OfOneZoneIsTheZone)
{
    expectArea(areaOf({{100, 50}}), 100, 50);
}

TEST(SekonicUsbBarcodeArea, OfZonesFarApartDoesNotReachTheLast)
{
    expectArea(areaOf({{100, 50}, {300, 30}}), 100, 80);
}

TEST(SekonicUsbBarcodeArea, BeginsAtTheSmallestDistance)
{
    expectArea(areaOf({{300, 30}, {100, 50}, {200, 7}}), 100, 87);
    expectArea(areaOf({{0, 1}, {-20, 2}, {-20, 4}}), -20, 7);
}

TEST(SekonicUsbBarcodeArea, IsAsLongAsAllZonesTogetherEvenWhenTheyOverlap)
{
    expectArea(areaOf({{100, 50}, {100, 50}, {110, -5}}), 100, 95);
    expectArea(areaOf({{5, 32767}, {5, 32767}}), 5, 65534);
}

TEST(SekonicUsbBarcodeArea, FailsWithoutAZone)
{
    const clsKELReaderBarcodes none;
    try {
        static_cast<void>(barcodeAreaSR(none));
        FAIL();
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.number(), 91);
    }
}

TEST(SekonicUsbBarcodeArea, FailsWhereTheLengthsGoBeyond32Bits)
{
    const auto longest = zone(1, 32767);
    clsKELReaderBarcodes collection;
    for (int i = 0; i < 65538; ++i)
        collection.Add(longest);
    expectArea(barcodeAreaSR(collection), 1, 2147483646);
    collection.Add(zone(1, 2));
    EXPECT_THROW(static_cast<void>(barcodeAreaSR(collection)), RuntimeFailure);
}

} // namespace
} // namespace kel
