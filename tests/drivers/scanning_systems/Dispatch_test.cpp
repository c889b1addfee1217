// SPDX-License-Identifier: MIT
#include "SerialReaderTest.h"

#include "dispatch/DriverFamilies.h"

namespace kel::scanning_systems_test {
namespace {

constexpr kelReaderType kDecidingModels[] = {kelReaderTypeScanningSystemsSR601, kelReaderTypeScanningSystemsSR607,
                                             kelReaderTypeScanningSystemsSR700351,
                                             kelReaderTypeScanningSystemsSR700352};

using DispatchSS = SerialReaderTest;

TEST_F(DispatchSS, AllModelsAreReadButNotAllPrintOrDecide)
{
    for (const kelReaderType model : kDecidingModels) {
        const DriverFamily* family = driverFamily(model);
        ASSERT_NE(family, nullptr) << model;
        EXPECT_TRUE(family->Print && family->Reject && family->Eject) << model;
    }
    for (const kelReaderType model : {kelReaderTypeScanningSystemsSR410, kelReaderTypeSekonicSR430}) {
        const DriverFamily* family = driverFamily(model);
        ASSERT_NE(family, nullptr) << model;
        EXPECT_TRUE(family->Init == InitReaderSS && family->Read == ReadPageSS) << model;
        EXPECT_EQ(family->Close(reader), True) << model;
        EXPECT_FALSE(family->Print || family->Reject || family->Eject) << model;
    }
}

TEST_F(DispatchSS, ACancelledPrintIsToldToTheReaderAndEndsTheSheet)
{
    for (const kelReaderType model : kDecidingModels) {
        const DriverFamily* family = driverFamily(model);
        Boolean bSheetEjected = False;
        device.on("?F\r", "0");
        EXPECT_EQ(family->Print(reader, True, bSheetEjected), False);
        EXPECT_EQ(bSheetEjected, True);
        device
            .on("\x13"
                "P32245\r")
            .on("?P\r", "0");
        EXPECT_EQ(family->Print(reader, False, bSheetEjected), True);
        EXPECT_EQ(bSheetEjected, False);
    }
}

TEST_F(DispatchSS, ARejectGoesByTheRejecterAndAnEjectToTheNormalPath)
{
    for (const kelReaderType model : kDecidingModels) {
        const DriverFamily* family = driverFamily(model);
        Boolean bSheetEjected = True;
        reader.Rejecter(True);
        device.on("\x13R05\r").on("\x13R04\r").on("\x13R04\r");
        family->Reject(reader);
        family->Eject(reader, bSheetEjected);
        EXPECT_EQ(bSheetEjected, True);
        reader.Rejecter(False);
        family->Reject(reader);
    }
}

} // namespace
} // namespace kel::scanning_systems_test
