// SPDX-License-Identifier: MIT
#include "host/PropertyTable.h"

#include "simulators/platform/SimulatedPlatform.h"
#include "tests/host/Refusal.h"

#include <gmock/gmock.h>

namespace kel {
namespace {

using testing::StartsWith;

std::string assignmentRefusal(const std::string& assignment)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    return test::refusalOf([&] { host::applyAssignment(reader, assignment); });
}

struct Case {
    const char* assignment;
    const char* json;
};

class PropertyTable : public testing::TestWithParam<Case> {};

TEST_P(PropertyTable, SetsAndGives)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.Printer()->Enabled(True);
    host::applyAssignment(reader, GetParam().assignment);
    const std::string name(GetParam().assignment, std::string_view(GetParam().assignment).find('='));
    EXPECT_EQ(jsonText(host::propertyNamed(name).get(reader)), GetParam().json);
}

INSTANTIATE_TEST_SUITE_P(
    Values, PropertyTable,
    testing::Values(Case{"ReaderGrade=true", "true"}, Case{"BaudRate=4800", "4800"},
                    Case{"BaudRate=kelReaderBaudRate38400", "38400"}, Case{"SleepTime=-2147483648", "-2147483648"},
                    Case{"DataBits=7", "7"}, Case{"Duplex=false", "false"}, Case{"DuplexForm=TRUE", "true"},
                    Case{"Barcode=true", "true"}, Case{"Feeder=false", "false"}, Case{"FlowControl=Hardware", "2"},
                    Case{"FlowControl=3", "3"}, Case{"MarkCutOff=32767", "32767"},
                    Case{"MarkDiscrimination=-32768", "-32768"}, Case{"Parity=E", "\"E\""}, Case{"Parity=", "\"N\""},
                    Case{"Port=99", "99"}, Case{"CancelScan=false", "false"}, Case{"ReaderType=24", "24"},
                    Case{"ReaderType=kelReaderTypePDIVMR138", "24"}, Case{"RecognitionThreshold=9", "9"},
                    Case{"Rejecter=true", "true"}, Case{"StopBits=1.5", "1.5"}, Case{"Timeout=+3", "3"},
                    Case{"windowing=true", "true"}, Case{"RecognitionMode=kelRecognitionTypeWindow", "2"},
                    Case{"Printer.Enabled=false", "false"}, Case{"Printer.Active=true", "true"},
                    Case{"Printer.Buffer1=a=b", "\"a=b\""}, Case{"Printer.Buffer2=", "\"\""},
                    Case{"Printer.Buffer3=x", "\"x\""}, Case{"printer.distance=12", "12"}));

TEST(PropertyTable, PrintLinesHoldAByteACharacterAndOtherTextsAreTheSettings)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    const auto json = [&](const char* name) { return jsonText(host::propertyNamed(name).get(reader)); };
    host::applyAssignment(reader, "Printer.Buffer1=ä");
    EXPECT_EQ(reader.Printer()->Buffer1(), "\xE4");
    EXPECT_EQ(json("Printer.Buffer1"), "\"ä\"");
    EXPECT_EQ(assignmentRefusal("Printer.Buffer1=€"),
              "'€' does not fit Printer.Buffer1, which takes characters of Latin-1 only.");

    const std::string wrong = "ä€";
    host::applyAssignment(reader, "Parity=" + wrong);
    EXPECT_EQ(reader.Parity(), wrong);
    EXPECT_EQ(json("Parity"), "\"ä€\"");
    EXPECT_TRUE(reader.SaveSettings(kelReaderRegistryKeyCurrentUser, "Key"));
    EXPECT_TRUE(reader.LoadSettings(kelReaderRegistryKeyCurrentUser, "Key"));
    EXPECT_EQ(json("Parity"), "\"ä€\"");
}

TEST(PropertyTable, EveryRowIsFoundByItsName)
{
    for (const host::PropertyRow& row : host::readerProperties())
        EXPECT_EQ(&host::propertyNamed(row.name), &row) << row.name;
    EXPECT_EQ(host::readerProperties().size(), 27U);
}

TEST(PropertyTable, UnknownNameTellsTheNearest)
{
    EXPECT_EQ(assignmentRefusal("StopBit=1"), "The reader has no property 'StopBit' that can be set; the nearest is "
                                              "StopBits.");
    EXPECT_THAT(assignmentRefusal("ReaderName=x"),
                StartsWith("The reader has no property 'ReaderName' that can be set"));
    EXPECT_THAT(assignmentRefusal("=1"), StartsWith("The reader has no property '' that can be set"));
}

TEST(PropertyTable, ValueThatDoesNotFitTellsWhatWould)
{
    EXPECT_EQ(assignmentRefusal("Port=40000"),
              "'40000' does not fit Port, which takes a whole number from -32768 to 32767.");
    EXPECT_EQ(assignmentRefusal("Port=1.5"),
              "'1.5' does not fit Port, which takes a whole number from -32768 to 32767.");
    EXPECT_EQ(assignmentRefusal("Port="), "'' does not fit Port, which takes a whole number from -32768 to 32767.");
    EXPECT_EQ(assignmentRefusal("Timeout=2147483648"),
              "'2147483648' does not fit Timeout, which takes a whole number from -2147483648 to 2147483647.");
    EXPECT_EQ(assignmentRefusal("Duplex=1"), "'1' does not fit Duplex, which takes true or false.");
    EXPECT_EQ(assignmentRefusal("StopBits=two"), "'two' does not fit StopBits, which takes a number such as 1 or 1.5.");
    EXPECT_EQ(assignmentRefusal("StopBits=inf"), "'inf' does not fit StopBits, which takes a number such as 1 or 1.5.");
    EXPECT_EQ(assignmentRefusal("FlowControl=Hard"),
              "'Hard' does not fit FlowControl, which takes a 32-bit whole number or one of the enumeration's names: "
              "kelReaderFlowControlNone, kelReaderFlowControlXonXoff, kelReaderFlowControlHardware or "
              "kelReaderFlowControlBoth.");
    EXPECT_EQ(assignmentRefusal("Port"), "'Port' sets nothing; write Property=Value.");
}

} // namespace
} // namespace kel
