// SPDX-License-Identifier: MIT
// The variables of objects, and of procedures of the options dialog, as a report tells them.

#include "failure/guarded.h"
#include "failure/modvbCodeShieldSupport.h"
#include "options/basPublic.h"
#include "options/frmOptions.h"
#include "platform/NamedObjects.h"
#include "reader/frmComm.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::ElementsAre;

template <class Object>
std::string dumpOf(const Object& object)
{
    ProcedureDump dump;
    moduleOf(object).tell(dump);
    return dump.module;
}

TEST(ObjectDump, OfAReadWindow)
{
    clsKELReaderWindow window;
    window.StartRow(1);
    window.NumRows(2);
    window.RowGap(-3);
    window.StartCol(4);
    window.NumCols(5);
    window.ColGap(6);
    window.Page(7);
    window.Orientation(8);
    window.NumItems(9);
    window.NumChoices(10);
    EXPECT_EQ(dumpOf(window), "    <iStartRow>1</iStartRow>\r\n"
                              "    <iNumRows>2</iNumRows>\r\n"
                              "    <iRowGap>-3</iRowGap>\r\n"
                              "    <iStartCol>4</iStartCol>\r\n"
                              "    <iNumCols>5</iNumCols>\r\n"
                              "    <iColGap>6</iColGap>\r\n"
                              "    <iPage>7</iPage>\r\n"
                              "    <iOrientation>8</iOrientation>\r\n"
                              "    <iNumItems>9</iNumItems>\r\n"
                              "    <iNumChoices>10</iNumChoices>\r\n");
}

TEST(ObjectDump, OfABarcodeZone)
{
    clsKELReaderBarcode zone;
    zone.Page(1);
    zone.Distance(20);
    zone.Length(30);
    zone.Symbology(static_cast<kelBarcodeType>(4));
    zone.Orientation(static_cast<kelBarcodeOrientation>(2));
    EXPECT_EQ(dumpOf(zone), "    <iPage>1</iPage>\r\n"
                            "    <iDistance>20</iDistance>\r\n"
                            "    <iLength>30</iLength>\r\n"
                            "    <eSymbology>4</eSymbology>\r\n"
                            "    <eOrientation>2</eOrientation>\r\n");
}

TEST(ObjectDump, OfAProfileHasEveryStoredProperty)
{
    clsKELReaderProfile profile;
    profile.ReaderType(kelReaderTypePDIVMR138);
    profile.BaudRate(static_cast<kelReaderBaudRate>(9600));
    profile.StopBits(1.5F);
    profile.Parity("E");
    profile.SleepTime(50);
    std::string expected;
    forEachProperty(profile, [&](std::string_view name, const auto& value) {
        std::string text;
        if constexpr (std::is_enum_v<std::remove_cvref_t<decltype(value)>>)
            text = std::to_string(static_cast<Int32>(value));
        else
            text = valueText(toVariant(value));
        if (name != "ReaderName")
            expected += "    <" + std::string(name) + ">" + text + "</" + std::string(name) + ">\r\n";
    });
    const std::string dump = dumpOf(profile);
    EXPECT_EQ(dump, expected);
    EXPECT_TRUE(dump.starts_with("    <ReaderGrade>False</ReaderGrade>\r\n"
                                 "    <ReaderGradeEnabled>False</ReaderGradeEnabled>\r\n"
                                 "    <ReaderGradeVisible>True</ReaderGradeVisible>\r\n"));
    EXPECT_NE(dump.find("    <BaudRate>9600</BaudRate>\r\n"), std::string::npos);
    EXPECT_NE(dump.find("    <StopBits>1.5</StopBits>\r\n"), std::string::npos);
    EXPECT_NE(dump.find("    <ReaderType>24</ReaderType>\r\n"), std::string::npos);
    EXPECT_NE(dump.find("    <Parity>E</Parity>\r\n"), std::string::npos);
}

TEST(ObjectDump, OfACarrier)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    EXPECT_EQ(dumpOf(frmComm()), "    <mscComm>{Cannot dump external UDTs}</mscComm>\r\n"
                                 "    <tmrScan>{Cannot dump external UDTs}</tmrScan>\r\n");
}

TEST(ObjectDump, OfTheOptionsDialog)
{
    ReaderHost host;
    frmOptions form;
    EXPECT_EQ(dumpOf(form), "    <iReaderIndex>0</iReaderIndex>\r\n"
                            "    <cReaderOptions>{Nothing}</cReaderOptions>\r\n"
                            "    <bLoadingValues>False</bLoadingValues>\r\n"
                            "    <bCancelled>True</bCancelled>\r\n");
    form.SetReader(host.reader());
    form.Show();
    form.cmdOK.Click();
    EXPECT_EQ(dumpOf(form), "    <iReaderIndex>-1</iReaderIndex>\r\n"
                            "    <cReaderOptions>{clsKELReader}</cReaderOptions>\r\n"
                            "    <bLoadingValues>False</bLoadingValues>\r\n"
                            "    <bCancelled>False</bCancelled>\r\n");
}

TEST(ObjectDump, OfParametersThatAreControls)
{
    ReaderHost host;
    clsKELReader& oReader = host.reader();
    frmOptions form;
    Form& oForm = form;
    const Control& oControl = form.lblPort;
    const PowerCombo& cboCombo = form.cboPort;
    const PowerEdit& txtEdit = form.txtMarkCutOff;
    const ControlList vControlList{&form.chkDuplex, &form.cmdOK};
    auto oFormObject = std::make_shared<frmOptions>();
    ProcedureDump dump;
    const auto tell = [&](const auto& stated) { stated.tell(dump); };
    tell(KEL_PARAMETERS(oReader, oForm, oControl, cboCombo, txtEdit, vControlList) + KEL_LOCALS(oFormObject));
    EXPECT_EQ(dump.parameters, "    <oReader>{clsKELReader}</oReader>\r\n"
                               "    <oForm>{Form}</oForm>\r\n"
                               "    <oControl>{Label}</oControl>\r\n"
                               "    <cboCombo>{PowerCombo}</cboCombo>\r\n"
                               "    <txtEdit>{PowerEdit}</txtEdit>\r\n"
                               "    <vControlList>\r\n"
                               "      <vControlList Index=\"0\">{CheckBox}</vControlList>\r\n"
                               "      <vControlList Index=\"1\">{PowerButton}</vControlList>\r\n"
                               "    </vControlList>\r\n");
    EXPECT_EQ(dump.locals, "    <oFormObject>{frmOptions}</oFormObject>\r\n");
    oFormObject.reset();
    tell(KEL_LOCALS(oFormObject));
    EXPECT_EQ(dump.locals, "    <oFormObject>{Nothing}</oFormObject>\r\n");
}

/// Writes down what is sent of the dialog.
class DialogDebugger final : public DebuggerIPC {
public:
    Int32 Send(Int32 lCode, const std::string& sText, const Variant&, Int32, Int32) override
    {
        if (sText.starts_with("frmOptions"))
            sent.push_back(std::to_string(lCode) + " " + sText);
        return 0;
    }
    Boolean HasDebugSession() override { return True; }

    std::vector<std::string> sent;
};

TEST(ObjectLifeOfTheOptionsDialog, LastsFromLoadingToUnloading)
{
    ReaderHost host;
    vbcsForgetInitialisation();
    host.machine.registry().text(kelReaderRegistryKeyCurrentUser, R"(Software\Innovasys\vbCodeShield\Debugger\)",
                                 "Count", "1");
    const auto debugger = std::make_shared<DialogDebugger>();
    setDebuggerFactory([&](IVBCSClient&) { return debugger; });
    vbcsInitialise();
    auto form = std::make_shared<frmOptions>();
    form->SetReader(host.reader());
    EXPECT_TRUE(debugger->sent.empty());
    form->Show();
    EXPECT_THAT(debugger->sent, ElementsAre("500 frmOptions,3"));
    form->Unload();
    form->Unload();
    EXPECT_THAT(debugger->sent, ElementsAre("500 frmOptions,3", "501 frmOptions,3"));
    form->Show();
    form.reset();
    EXPECT_THAT(debugger->sent,
                ElementsAre("500 frmOptions,3", "501 frmOptions,3", "500 frmOptions,3", "501 frmOptions,3"));
    setDebuggerFactory({});
    vbcsForgetInitialisation();
}

} // namespace
} // namespace kel::test
