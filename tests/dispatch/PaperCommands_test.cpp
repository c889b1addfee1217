// SPDX-License-Identifier: MIT
#include "dispatch/PaperCommands.h"

#include <gtest/gtest.h>

#include <string>

namespace kel::test {
namespace {

using namespace std::string_literals;

TEST(PaperCommands, AreKnownOfEachWire)
{
    EXPECT_TRUE(movesNoPaper(kelReaderTypeScantronScanMark5500, "\x1BSRST\r", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeScantronScanMark5500, "\x1BREAD 5 Y\r", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeScantronScanMark5500, "\x1B"s + "EJCT A \r", ""));
    EXPECT_TRUE(movesNoPaper(kelReaderTypeNCSOpScan5, "\x11", "ei\x04"));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeNCSOpScan5, "\x11", "r"));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeNCSOpScan5, "\x12", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeNCSEZData, "\x12\x1BSETFLAGS03\x12"s + "E", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeNCSEZData, "\x12\x1B"s + "E\x12"s + "E", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypePDIVMR138, "8", "Q"));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeChatsworthOMR1100, "\x12R7777I00E", ""));
    EXPECT_TRUE(movesNoPaper(kelReaderTypeChatsworthOMR2000, "\x12R7777I00E", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeScanningSystemsSR601, "?\r", ""));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeAppersonAdvantage1200, "M8", "M0"));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeAppersonAdvantageLink, "FD\r", "FB\r"));
    EXPECT_FALSE(movesNoPaper(kelReaderTypeSekonicSR1800, "s0", "")) << "it has no line";
    EXPECT_FALSE(movesNoPaper(kelReaderTypeNone, "s0", ""));
}

} // namespace
} // namespace kel::test
