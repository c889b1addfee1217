// SPDX-License-Identifier: MIT
// Crash capture in the reader object: its life as a debugger sees it, and its variables in a report.

#include "contract/AnswerKey.h"
#include "failure/modvbCodeShieldSupport.h"
#include "platform/NamedObjects.h"
#include "tests/support/ReaderHost.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

/// Writes down code and name of what is sent.
class ReaderDebugger : public DebuggerIPC {
public:
    Int32 Send(Int32 lCode, const std::string& sText, const Variant&, Int32, Int32) override
    {
        const std::string line = std::to_string(lCode) + " " + sText;
        if (line.find("clsKELReaderProfile,") == std::string::npos)
            sent.push_back(line);
        else
            ++profiles;
        return 0;
    }
    Boolean HasDebugSession() override { return True; }

    std::vector<std::string> sent;
    int profiles = 0;
};

class ReaderObject : public testing::Test {
protected:
    ReaderObject() { vbcsForgetInitialisation(); }
    ~ReaderObject() override
    {
        registerErrorLibrary(kErrorLibraryClass, {});
        setDebuggerFactory({});
        vbcsForgetInitialisation();
    }

    SimulatedPlatform machine;
    PlatformScope scope{machine};
};

TEST_F(ReaderObject, StartsTheComponentWithTheFirstObject)
{
    EXPECT_EQ(vbcsHasInitialised(), False);
    const clsKELReaderWindow window;
    EXPECT_EQ(vbcsHasInitialised(), True);
}

TEST_F(ReaderObject, TellsADebuggerOfItselfAndItsMembersInTheirOrder)
{
    machine.registry().text(kelReaderRegistryKeyCurrentUser, R"(Software\Innovasys\vbCodeShield\Debugger\)", "Count",
                            "1");
    const auto debugger = std::make_shared<ReaderDebugger>();
    setDebuggerFactory([&](IVBCSClient&) { return debugger; });
    vbcsInitialise();
    {
        const clsKELReader reader;
        EXPECT_THAT(debugger->sent,
                    ElementsAre("500 clsKELReader,1", "500 clsKELReaderPrinter,1", "500 clsKELReaderWindows,1",
                                "500 clsKELReaderProfiles,1", "500 clsKELReaderBarcodes,1", "500 frmComm,3"));
        EXPECT_EQ(debugger->profiles, reader.Profiles()->Count());
        debugger->sent.clear();
    }
    EXPECT_THAT(debugger->sent,
                ElementsAre("501 clsKELReader,1", "501 clsKELReaderBarcodes,1", "501 clsKELReaderWindows,1",
                            "501 clsKELReaderProfiles,1", "501 clsKELReaderPrinter,1", "501 frmComm,3"));
}

class Library : public ErrorLibraryObject {
public:
    explicit Library(std::vector<CrashReport>& reports) : reports_(reports) {}
    void ErrorHandler(const CrashReport& report) override { reports_.push_back(report); }

private:
    std::vector<CrashReport>& reports_;
};

TEST_F(ReaderObject, ReportsAnAccessorThatFailsWithItsVariables)
{
    std::vector<CrashReport> reports;
    registerErrorLibrary(kErrorLibraryClass, [&] { return std::make_shared<Library>(reports); });
    clsKELReader reader;
    reader.Windows()->Add(makeReference<clsKELReaderWindow>());
    reader.Side1Rows(pages({60, 40}));
    try {
        static_cast<void>(reader.HelpID(static_cast<kelReaderHelpID>(7)));
        FAIL() << "an index out of bounds was taken";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.number(), 9);
    }
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].module, "clsKELReader");
    EXPECT_EQ(reports[0].procedure, "HelpID");
    EXPECT_THAT(reports[0].variables, HasSubstr("<ModuleVariables>\r\n"
                                                "    <Barcodes>{clsKELReaderBarcodes}</Barcodes>\r\n"
                                                "    <Windows>{clsKELReaderWindows}</Windows>\r\n"
                                                "    <Profiles>{clsKELReaderProfiles}</Profiles>\r\n"
                                                "    <Printer>{clsKELReaderPrinter}</Printer>\r\n"
                                                "    <fComm>{frmComm}</fComm>\r\n"
                                                "    <AnswerKey>{Nothing}</AnswerKey>\r\n"
                                                "    <fPComm>{frmComm}</fPComm>\r\n"
                                                "    <uReader>{UDT - kelReaderStruct}</uReader>\r\n"
                                                "    <lHelpIDArr>\r\n"
                                                "      <lHelpIDArr Index=\"0\">0</lHelpIDArr>\r\n"
                                                "    </lHelpIDArr>\r\n"
                                                "    <bSheetEjected>False</bSheetEjected>\r\n"
                                                "    <iLargestSide1Rows>60</iLargestSide1Rows>\r\n"
                                                "    <iLargestSide1Cols>0</iLargestSide1Cols>\r\n"
                                                "    <iLargestSide2Rows>0</iLargestSide2Rows>\r\n"
                                                "    <iLargestSide2Cols>0</iLargestSide2Cols>\r\n"
                                                "    <iSide1TimingMarks>0</iSide1TimingMarks>\r\n"
                                                "    <iSide2TimingMarks>0</iSide2TimingMarks>\r\n"
                                                "    <iSide1Arr>\r\n"
                                                "      {UnInitialised Array}\r\n"
                                                "    </iSide1Arr>\r\n"
                                                "    <iSide2Arr>\r\n"
                                                "      {UnInitialised Array}\r\n"
                                                "    </iSide2Arr>\r\n"
                                                "    <sBarcodeArr>\r\n"
                                                "      {UnInitialised Array}\r\n"
                                                "    </sBarcodeArr>\r\n"
                                                "    <iSide1RowsArr>\r\n"
                                                "      <iSide1RowsArr Index=\"1\">60</iSide1RowsArr>\r\n"
                                                "      <iSide1RowsArr Index=\"2\">40</iSide1RowsArr>\r\n"
                                                "    </iSide1RowsArr>\r\n"));
    EXPECT_THAT(
        reports[0].variables,
        EndsWith("<Parameters>\r\n    <eHelpIDType>{Cannot dump external UDTs}</eHelpIDType>\r\n</Parameters>"));
}

TEST_F(ReaderObject, RaisesAnAccessorsFailureOnceMoreForItsCaller)
{
    const auto host = std::make_shared<RecordingHost>();
    setErrorObject(host);
    clsKELReader reader;
    reader.Printer(nullptr);
    EXPECT_EQ(reader.LoadDefaults(kelReaderTypePDIVMR138), False);
    setErrorObject(nullptr);
    // The setter of the model raises once more what it has captured, and the caller reports it.
    ASSERT_EQ(host->reports.size(), 1U);
    EXPECT_EQ(host->reports[0].ErrorNumber, 91);
    EXPECT_TRUE(host->reports[0].ErrorSource.starts_with("clsKELReader.LoadDefaults"));
    ASSERT_EQ(machine.screen().boxes().size(), 1U);
    EXPECT_THAT(machine.screen().boxes()[0].text, HasSubstr("Module: clsKELReader\r\nProcedure: ReaderType\r\n"));
}

TEST_F(ReaderObject, GivesBackTheHostsOwnObjects)
{
    class HostsCarrier : public Carrier {
    public:
        SerialControl& mscComm() override { return *control; }
        ScanTimer& tmrScan() override { return *timer; }
        std::unique_ptr<SerialControl> control = platform().newSerialControl();
        std::unique_ptr<ScanTimer> timer = platform().newScanTimer();
    };
    clsKELReader reader;
    const auto carrier = makeReference<HostsCarrier>();
    const auto key = makeReference<AnswerKey>();
    reader.fComm(carrier);
    reader.AnswerKey(key);
    EXPECT_EQ(reader.fComm(), Reference<Carrier>(carrier));
    EXPECT_EQ(reader.AnswerKey(), Reference<AnswerKeyObject>(key));
    reader.fComm(nullptr);
    EXPECT_TRUE(reader.fComm().isNothing());
}

} // namespace
} // namespace kel::test
