// SPDX-License-Identifier: MIT
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

Reference<clsKELReaderWindow> windowAtRow(Int16 iRow)
{
    const auto window = makeReference<clsKELReaderWindow>();
    window->StartRow(iRow);
    return window;
}

Reference<clsKELReaderBarcode> zoneAt(Int16 iDistance)
{
    const auto zone = makeReference<clsKELReaderBarcode>();
    zone->Distance(iDistance);
    return zone;
}

std::vector<Int16> rowsOf(const clsKELReaderWindows& windows)
{
    std::vector<Int16> rows;
    for (Int32 i = 1; i <= windows.Count(); ++i)
        rows.push_back(windows.Item(i)->StartRow());
    return rows;
}

class CollectionsTest : public testing::Test {
protected:
    clsKELReaderWindows& windows() { return *host.reader().Windows(); }
    clsKELReaderBarcodes& zones() { return *host.reader().Barcodes(); }

    ReaderHost host;
};

TEST_F(CollectionsTest, WindowsKeepTheirOrder)
{
    windows().Add(windowAtRow(1));
    windows().Add(windowAtRow(2));
    windows().Add(windowAtRow(3), 1);
    windows().Add(windowAtRow(4), std::nullopt, 1);
    EXPECT_THAT(rowsOf(windows()), ElementsAre(3, 4, 1, 2));
    windows().Remove(2);
    EXPECT_THAT(rowsOf(windows()), ElementsAre(3, 1, 2));
    windows().RemoveAll();
    EXPECT_EQ(windows().Count(), 0);
    EXPECT_THAT(host.heard().reports, IsEmpty());
}

TEST_F(CollectionsTest, APositionOutsideIsNothingWithoutAReport)
{
    windows().Add(windowAtRow(1));
    EXPECT_TRUE(windows().Item(0).isNothing());
    EXPECT_TRUE(windows().Item(2).isNothing());
    EXPECT_EQ(windows().Exists(0), False);
    EXPECT_EQ(windows().Exists(1), True);
    EXPECT_EQ(windows().Exists(2), False);
    EXPECT_TRUE(zones().Item(1).isNothing());
    EXPECT_EQ(zones().Exists(1), False);
    EXPECT_THAT(host.heard().reports, IsEmpty());
}

TEST_F(CollectionsTest, RemovingWhatIsNotThereIsReported)
{
    windows().Remove(1);
    zones().Remove(3);
    ASSERT_EQ(host.heard().reports.size(), 2U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 9);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, StartsWith("clsKELReaderWindows.Remove"));
    EXPECT_THAT(host.heard().reports[1].ErrorSource, StartsWith("clsKELReaderBarcodes.Remove"));
}

TEST_F(CollectionsTest, AddingAtAPlaceThatIsNotThereIsReported)
{
    windows().Add(windowAtRow(1), 5);
    zones().Add(zoneAt(1), 1, 1);
    ASSERT_EQ(host.heard().reports.size(), 2U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 9);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, StartsWith("clsKELReaderWindows.Add"));
    EXPECT_EQ(host.heard().reports[1].ErrorNumber, 5);
    EXPECT_THAT(host.heard().reports[1].ErrorSource, StartsWith("clsKELReaderBarcodes.Add"));
    EXPECT_EQ(windows().Count(), 0);
    EXPECT_EQ(zones().Count(), 0);
}

TEST_F(CollectionsTest, ZonesKeepTheirOrder)
{
    zones().Add(zoneAt(10));
    zones().Add(zoneAt(20), 1);
    EXPECT_EQ(zones().Count(), 2);
    EXPECT_EQ(zones().Item(1)->Distance(), 20);
    zones().RemoveAll();
    EXPECT_EQ(zones().Count(), 0);
}

TEST_F(CollectionsTest, NewRecordsAreZero)
{
    const clsKELReaderWindow window;
    EXPECT_EQ(window.StartRow() | window.NumRows() | window.RowGap() | window.StartCol() | window.NumCols() |
                  window.ColGap() | window.Page() | window.Orientation() | window.NumItems() | window.NumChoices(),
              0);
    const clsKELReaderBarcode zone;
    EXPECT_EQ(zone.Page() | zone.Distance() | zone.Length() | zone.Symbology() | zone.Orientation(), 0);
}

TEST_F(CollectionsTest, PageArraysComeBackAsTheyWereSet)
{
    const PageArray given = PageArray::of(0, {9, 3, 5});
    host.reader().Side1Rows(given);
    EXPECT_EQ(host.reader().Side1Rows(), given);
    EXPECT_FALSE(host.reader().Side1Cols().isDimensioned());
}

TEST_F(CollectionsTest, AnArrayWithoutBoundsIsAReportedFailure)
{
    host.reader().Side2Cols(PageArray());
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 9);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, StartsWith("clsKELReader.Side2Cols"));
}

TEST_F(CollectionsTest, OthersTakeTheirPlace)
{
    const auto others = makeReference<clsKELReaderWindows>();
    others->Add(windowAtRow(7));
    host.reader().Windows(others);
    EXPECT_EQ(host.reader().Windows(), others);
    EXPECT_THAT(rowsOf(windows()), ElementsAre(7));

    const auto otherZones = makeReference<clsKELReaderBarcodes>();
    host.reader().Barcodes(otherZones);
    EXPECT_EQ(host.reader().Barcodes(), otherZones);
    host.reader().Barcodes(nullptr);
    EXPECT_TRUE(host.reader().Barcodes().isNothing());
    EXPECT_THAT(host.heard().reports, IsEmpty());
}

TEST_F(CollectionsTest, CopiesHaveTheSameItemsAndGoTheirOwnWay)
{
    windows().Add(windowAtRow(1));
    zones().Add(zoneAt(100));
    clsKELReaderWindows otherWindows = windows();
    clsKELReaderBarcodes otherZones = zones();
    otherWindows.Add(windowAtRow(2));
    otherZones.RemoveAll();
    EXPECT_THAT(rowsOf(otherWindows), ElementsAre(1, 2));
    EXPECT_EQ(otherWindows.Item(1), windows().Item(1));
    EXPECT_THAT(rowsOf(windows()), ElementsAre(1));
    EXPECT_EQ(zones().Count(), 1);

    clsKELReaderWindow window;
    window = *windows().Item(1);
    window.StartRow(9);
    EXPECT_EQ(windows().Item(1)->StartRow(), 1);
    clsKELReaderBarcode zone;
    zone = *zones().Item(1);
    zone.Distance(9);
    EXPECT_EQ(zones().Item(1)->Distance(), 100);
}

} // namespace
} // namespace kel::test
