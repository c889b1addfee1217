// SPDX-License-Identifier: MIT
#pragma once

#include "FakeOmrApi.h"

#include "failure/basError.h"
#include "reader/ReaderSession.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/KeptReports.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace kel::sekonic_usb_test {

/// A reader object with a scripted library beneath it, and nothing else that is real.
class UsbReaderTest : public ::testing::Test {
protected:
    UsbReaderTest() : scope(machine) { machine.omrApiLoader().set(&library); }

    void SetUp() override
    {
        setErrorObject(errors);
        reader.ReaderType(kelReaderTypeSekonicSR2300);
        reader.CancelScan(False);
    }

    void TearDown() override { setErrorObject(nullptr); }

    [[nodiscard]] const std::vector<ErrorReport>& reports() const { return errors->reports; }

    /// Adds a barcode zone, and has barcodes read.
    void addZone(Int16 distance, Int16 length)
    {
        const auto zone = makeReference<clsKELReaderBarcode>();
        zone->Distance(distance);
        zone->Length(length);
        reader.Barcodes()->Add(zone);
        reader.settings().Barcode = True;
    }

    void makeDuplex()
    {
        reader.settings().Duplex = True;
        reader.settings().DuplexForm = True;
    }

    /// The one report of a fault of the reader.
    void expectFault(TextNumber text, TextNumber title, const std::string& procedure)
    {
        ASSERT_EQ(reports().size(), 1U);
        EXPECT_EQ(reports()[0].ErrorNumber, text.value());
        EXPECT_EQ(reports()[0].ErrorDescription, VBLM_RTString(text));
        EXPECT_EQ(reports()[0].ErrorTitle, VBLM_RTString(title));
        EXPECT_EQ(reports()[0].ErrorType, kErrorTypeReader);
        EXPECT_EQ(reports()[0].LineNumber, 0);
        EXPECT_EQ(reports()[0].ErrorSource, "basSekonicSR." + procedure);
    }

    /// The one report of a run-time failure; its source bears the line after the procedure.
    void expectRuntimeFailure(Int32 number, const std::string& procedure)
    {
        ASSERT_EQ(reports().size(), 1U);
        EXPECT_EQ(reports()[0].ErrorNumber, number);
        EXPECT_EQ(reports()[0].ErrorType, kErrorTypeRunTime);
        EXPECT_TRUE(reports()[0].ErrorSource.starts_with("basSekonicSR." + procedure)) << reports()[0].ErrorSource;
        EXPECT_TRUE(reports()[0].ErrorTitle.empty());
    }

    SimulatedPlatform machine;
    PlatformScope scope;
    FakeOmrApi library;
    std::shared_ptr<test::KeptReports> errors = std::make_shared<test::KeptReports>();
    ReaderSession reader;
};

} // namespace kel::sekonic_usb_test
