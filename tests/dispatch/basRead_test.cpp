// SPDX-License-Identifier: MIT
#include "dispatch/DriverFamilies.h"
#include "dispatch/basRead.h"
#include "simulators/SimulatorTable.h"
#include "tests/profiles/ExpectedCatalogue.h"
#include "tests/support/ReaderHost.h"
#include "types/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class BasReadTest : public testing::Test {
protected:
    BasReadTest()
    {
        device = makeSimulator(kelReaderTypePDIVMR138, {});
        host.connect(kelReaderTypePDIVMR138, *device);
    }

    clsKELReader& reader() { return host.reader(); }

    std::unique_ptr<Simulator> device;
    ReaderHost host;
};

TEST_F(BasReadTest, PortsOutOfRangeAreRefusedWithoutAStop)
{
    for (const Int16 iPort : {Int16{0}, Int16{17}, Int16{-1}, Int16{99}}) {
        host.heard().reports.clear();
        reader().Port(iPort);
        EXPECT_EQ(reader().StartReader(), False) << iPort;
        EXPECT_EQ(reader().CancelScan(), False) << iPort;
        EXPECT_EQ(reader().Port(), iPort);
        ASSERT_EQ(host.heard().reports.size(), 1U);
        const ErrorReport& report = host.heard().reports[0];
        EXPECT_EQ(report.ErrorNumber, 8002);
        EXPECT_EQ(report.ErrorType, 1);
        EXPECT_EQ(report.LineNumber, 0);
        EXPECT_EQ(report.ErrorSource, "basRead.ReaderInit");
        EXPECT_THAT(report.ErrorDescription, HasSubstr(CStr(iPort)));
        EXPECT_EQ(report.ErrorDescription.find("%1"), std::string::npos);
        EXPECT_EQ(report.ErrorTitle, VBLM_RTString(TextNumber(370)));
    }
}

TEST_F(BasReadTest, Port16IsAccepted)
{
    host.machine.attach(16, *device);
    reader().Port(16);
    EXPECT_EQ(reader().StartReader(), True);
    reader().EndReader();
}

TEST_F(BasReadTest, ATimeoutOutOfRangeBecomesTenAndStays)
{
    for (const Int32 lTimeout : {0, 601, -5}) {
        reader().Timeout(lTimeout);
        reader().StartReader();
        EXPECT_EQ(reader().Timeout(), 10) << lTimeout;
        reader().EndReader();
        EXPECT_EQ(reader().Timeout(), 10) << lTimeout;
    }
}

TEST_F(BasReadTest, ATimeoutOfTenMinutesIsTheLongest)
{
    reader().ReaderType(kelReaderTypeChatsworthOMR1100);
    reader().Timeout(600);
    EXPECT_EQ(reader().StartReader(), True) << "this model is started without an answer";
    EXPECT_EQ(reader().Timeout(), 600);
    EXPECT_EQ(reader().fComm()->tmrScan().Interval(), 600000);
    reader().EndReader();
}

TEST_F(BasReadTest, AStatusQueryOfTheVMR138LeavesTheIntervalOfASecond)
{
    SimulatorOptions options;
    options.faults = {parseFault("late=600")};
    device = makeSimulator(kelReaderTypePDIVMR138, std::move(options));
    host.machine.attach(1, *device);
    reader().Timeout(30);
    reader().StartReader();
    EXPECT_EQ(reader().fComm()->tmrScan().Interval(), 1000);
    reader().EndReader();
}

TEST_F(BasReadTest, NoModelIsAQuietRefusal)
{
    for (const kelReaderType type : {kelReaderTypeNone, static_cast<kelReaderType>(99)}) {
        for (const Int16 port : {Int16{0}, Int16{1}}) {
            reader().ReaderType(type);
            reader().Port(port);
            EXPECT_EQ(reader().StartReader(), False);
            EXPECT_EQ(reader().CancelScan(), True);
            EXPECT_THAT(host.heard().order, IsEmpty());
            EXPECT_THAT(host.machine.line(1).actions(), IsEmpty());
        }
    }
}

TEST_F(BasReadTest, AModelWhoseProfileIsGoneNeverStarts)
{
    reader().Profiles()->Remove("24");
    EXPECT_EQ(reader().StartReader(), False);
    EXPECT_EQ(reader().CancelScan(), True);
    EXPECT_THAT(host.heard().order, IsEmpty());
    EXPECT_THAT(host.machine.line(1).actions(), IsEmpty());
}

TEST_F(BasReadTest, TheLineIsSetBeforeItIsOpened)
{
    reader().BaudRate(kelReaderBaudRate1200);
    reader().Parity("E");
    reader().DataBits(kelReaderDataBits7);
    reader().StopBits(1.5F);
    reader().FlowControl(kelReaderFlowControlXonXoff);
    reader().StartReader();
    std::vector<std::pair<HostAction::Kind, std::string>> first;
    for (std::size_t i = 0; i < 4; ++i)
        first.emplace_back(host.machine.line(1).actions().at(i).kind, host.machine.line(1).actions().at(i).text);
    using enum HostAction::Kind;
    EXPECT_THAT(first, ElementsAre(std::pair{Handshaking, std::string("1")}, std::pair{Port, std::string("1")},
                                   std::pair{Settings, std::string("1200,E,7,1.5")}, testing::Pair(Open, testing::_)));
    reader().EndReader();
}

TEST_F(BasReadTest, ALineThatDoesNotOpenIsReportedAndNoStop)
{
    host.machine.portState(1, PortState::Busy);
    EXPECT_EQ(reader().StartReader(), False);
    EXPECT_EQ(reader().CancelScan(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 8005);
    EXPECT_EQ(host.heard().reports[0].ErrorType, 0);
    EXPECT_EQ(host.heard().reports[0].ErrorTitle, "");
    EXPECT_THAT(host.heard().reports[0].ErrorSource, StartsWith("basRead.ReaderInit"));
}

TEST_F(BasReadTest, EndingAReaderThatIsOffFailsInItsCloseAlone)
{
    EXPECT_EQ(reader().EndReader(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 8018);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, StartsWith("basPeripheralDynamics.CloseReaderPD"));
}

TEST_F(BasReadTest, AHostMayReplaceTheCarrier)
{
    struct HostTimer final : ScanTimer {
        Int32 Interval() const override { return interval; }
        void Interval(Int32 milliseconds) override { interval = milliseconds; }
        Boolean Enabled() const override { return False; }
        void Enabled(Boolean) override {}
        Int32 interval = 0;
    };
    struct HostControl final : SerialControl {
        Int16 CommPort() const override { return port; }
        void CommPort(Int16 value) override { port = value; }
        std::string Settings() const override { return settings; }
        void Settings(const std::string& value) override { settings = value; }
        Int32 Handshaking() const override { return handshaking; }
        void Handshaking(Int32 value) override { handshaking = value; }
        Boolean PortOpen() const override { return open; }
        void PortOpen(Boolean value) override { open = value; }
        Int32 InputLen() const override { return 1; }
        void InputLen(Int32) override {}
        Int32 InBufferCount() override { return 0; }
        std::string Input() override { return {}; }
        void Output(std::string_view bytes) override { sent += bytes; }
        Int16 port = 0;
        std::string settings;
        Int32 handshaking = -1;
        Boolean open;
        std::string sent;
    };
    struct HostCarrier final : Carrier {
        SerialControl& mscComm() override { return control; }
        ScanTimer& tmrScan() override { return timer; }
        HostControl control;
        HostTimer timer;
    };
    const auto carrier = makeReference<HostCarrier>();
    reader().fComm(carrier);
    reader().Port(9);
    EXPECT_EQ(reader().StartReader(), False);
    EXPECT_EQ(carrier->control.settings, "9600,N,8,1");
    EXPECT_EQ(carrier->control.port, 9);
    EXPECT_EQ(carrier->control.handshaking, 0);
    EXPECT_EQ(carrier->control.sent, "0Q");
    EXPECT_EQ(carrier->timer.interval, 1000);
    EXPECT_THAT(host.machine.line(1).actions(), IsEmpty());
    reader().EndReader();
    EXPECT_EQ(carrier->control.open, False);
}

TEST_F(BasReadTest, ACarrierOfNothingIsAReportedFailure)
{
    reader().fComm(nullptr);
    EXPECT_EQ(reader().StartReader(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 91);
    EXPECT_EQ(reader().CancelScan(), False);
}

TEST(DriverFamiliesTest, EveryModelHasItsFamilyAndTheRestHaveNone)
{
    for (Int32 lType = 1; lType < kReaderTypeCount; ++lType)
        EXPECT_NE(driverFamily(static_cast<kelReaderType>(lType)), nullptr) << lType;
    for (const Int32 lType : {Int32{0}, Int32{-1}, kReaderTypeCount, Int32{99}})
        EXPECT_EQ(driverFamily(static_cast<kelReaderType>(lType)), nullptr) << lType;
}

TEST(DriverFamiliesTest, AFamilyHasTheStepsOfItsModels)
{
    const ReaderHost host;
    for (const ExpectedModel& model : ExpectedCatalogue().inOrder()) {
        SCOPED_TRACE(model.Record.at("ReaderName"));
        const DriverFamily* const family = driverFamily(model.type());
        const DriverFamily steps = family ? *family : DriverFamily{};
        EXPECT_EQ(steps.Print != nullptr, model.Printer.Presence == ExpectedPrinter::Kind::Optional);
        EXPECT_EQ(steps.Reject != nullptr, model.Decides);
        EXPECT_EQ(steps.Eject != nullptr, model.Decides);
        // Who is found by his firmware is searched for by it.
        EXPECT_EQ(steps.Locate != nullptr, model.is("FirmwareEnabled"));
        EXPECT_EQ(steps.Firmware != nullptr, model.is("FirmwareEnabled"));
    }
}

TEST(DriverFamiliesTest, RejectingOnAModelThatCannotSendsNothingButCounts)
{
    for (const kelReaderType eType : {kelReaderTypeChatsworthACP200, kelReaderTypeScantron8000}) {
        ReaderHost host;
        host.reader().ReaderType(eType);
        host.reader().RejectPage();
        host.reader().ReaderType(kelReaderTypePDIVMR138);
        host.reader().EjectPage();
        EXPECT_THAT(host.machine.line(1).actions(), IsEmpty()) << eType;
        EXPECT_THAT(host.heard().reports, IsEmpty()) << eType;
    }
}

TEST(ReaderNamesTest, ANumberThatIsNoModelHasNoName)
{
    const ReaderHost host;
    EXPECT_EQ(ReturnReaderName(static_cast<kelReaderType>(kReaderTypeCount)), "");
    EXPECT_EQ(ReturnReaderName(static_cast<kelReaderType>(-1)), "");
    EXPECT_EQ(ReturnReaderName(kelReaderTypeNone), VBLM_RTString(TextNumber(372)));
    EXPECT_EQ(ReturnReaderName(kelReaderTypeChatsworthACF100), "Chatsworth Data ACP-100");
    EXPECT_EQ(ReturnReaderName(kelReaderTypeChatsworthACP200), "Chatsworth Data ACP-200");
}

} // namespace
} // namespace kel::test
