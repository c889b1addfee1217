// SPDX-License-Identifier: MIT
#pragma once

#include "ScriptedReader.h"

#include "drivers/scanning_systems/EmulationMode.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "failure/basError.h"
#include "reader/ReaderSession.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/KeptReports.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kel::scanning_systems_test {

using namespace std::chrono_literals;

constexpr Int32 kPause = 50;
constexpr Moment kTimeout = 10s;

/// A reader object with an open line to a scripted reader, under a virtual clock.
class SerialReaderTest : public ::testing::Test {
protected:
    SerialReaderTest() : scope(machine)
    {
        machine.attach(1, device);
        machine.hostPace(HostPace::Instant);
    }

    void SetUp() override
    {
        ASSERT_NE(VBLM_RTString(TextNumber(374)), VBLM_RTString(TextNumber(378))) << "no language file";
        setErrorObject(errors);
        iEmulationMode = 0;
        reader.ReaderType(kelReaderTypeScanningSystemsSR601);
        reader.CancelScan(False);
        reader.SleepTime(kPause);
        reader.settings().RecognitionMode = kelRecognitionTypePage;
        reader.fComm().mscComm().CommPort(1);
        reader.fComm().mscComm().PortOpen(True);
        reader.fComm().tmrScan().Interval(10000);
        reader.Side1TimingMarks(-1);
        reader.Side2TimingMarks(-1);
    }

    void TearDown() override
    {
        setErrorObject(nullptr);
        EXPECT_EQ(device.stepsLeft(), 0U) << "the host has not said all";
        EXPECT_EQ(device.notUnderstood(), "");
    }

    [[nodiscard]] const std::vector<ErrorReport>& reports() const { return errors->reports; }

    /// The lengths of all pauses so far.
    [[nodiscard]] std::vector<Int32> pauses() const
    {
        std::vector<Int32> result;
        for (const HostSleep& sleep : machine.sleeps())
            result.push_back(sleep.milliseconds);
        return result;
    }

    void makeDuplex()
    {
        reader.settings().Duplex = True;
        reader.settings().DuplexForm = True;
    }

    void formOf(Int16 rows, Int16 columns)
    {
        reader.Side1Rows(PageArray::of(1, {rows}));
        reader.Side1Cols(PageArray::of(1, {columns}));
        reader.Side2Rows(PageArray::of(1, {rows}));
        reader.Side2Cols(PageArray::of(1, {columns}));
    }

    Reference<clsKELReaderWindow> addWindow(Int16 page, Int16 startRow, Int16 numRows, Int16 startCol)
    {
        auto cWindow = makeReference<clsKELReaderWindow>();
        cWindow->Page(page);
        cWindow->StartRow(startRow);
        cWindow->NumRows(numRows);
        cWindow->RowGap(1);
        cWindow->StartCol(startCol);
        cWindow->NumCols(4);
        cWindow->ColGap(1);
        reader.Windows()->Add(cWindow);
        return cWindow;
    }

    /// Bytes that nobody has asked for wait on the host's side.
    void leaveBehind(const std::string& bytes)
    {
        device.sendUnasked(machine.now(), bytes);
        machine.pump().Sleep(1);
    }

    /// A read that is asked to prepare the printer, or not to, and is stopped before it touches the reader.
    void preparePrinter(Boolean bInitialize)
    {
        const Boolean bBefore = reader.CancelScan();
        reader.CancelScan(True);
        EXPECT_FALSE(reader.ReadPage(bInitialize));
        reader.CancelScan(bBefore);
    }

    void addZone(Int16 distance)
    {
        auto cZone = makeReference<clsKELReaderBarcode>();
        cZone->Distance(distance);
        reader.Barcodes()->Add(cZone);
        reader.settings().Barcode = True;
    }

    void expectFault(std::size_t at, const std::string& text, const std::string& title, const std::string& procedure)
    {
        ASSERT_GT(reports().size(), at);
        EXPECT_EQ(reports()[at].ErrorDescription, text);
        EXPECT_EQ(reports()[at].ErrorTitle, title);
        EXPECT_EQ(reports()[at].ErrorSource, "basScanningSystems." + procedure);
        EXPECT_EQ(reports()[at].ErrorType, kErrorTypeReader);
        EXPECT_EQ(reports()[at].ErrorNumber, 0);
        EXPECT_EQ(reports()[at].LineNumber, 0);
    }

    /// The only report so far: a fault of the reader.
    void expectOneFault(TextNumber text, TextNumber title, const std::string& procedure)
    {
        EXPECT_EQ(reports().size(), 1U);
        expectFault(0, VBLM_RTString(text), VBLM_RTString(title), procedure);
    }

    /// The only report so far: a statement that failed. The line follows the procedure's name.
    void expectOneFailure(Int32 number, const std::string& procedure)
    {
        ASSERT_EQ(reports().size(), 1U);
        EXPECT_EQ(reports()[0].ErrorNumber, number);
        EXPECT_EQ(reports()[0].ErrorType, kErrorTypeRunTime);
        EXPECT_TRUE(reports()[0].ErrorSource.starts_with("basScanningSystems." + procedure))
            << reports()[0].ErrorSource;
    }

    SimulatedPlatform machine;
    PlatformScope scope;
    ScriptedReader device;
    std::shared_ptr<test::KeptReports> errors = std::make_shared<test::KeptReports>();
    ReaderSession reader;
};

} // namespace kel::scanning_systems_test
