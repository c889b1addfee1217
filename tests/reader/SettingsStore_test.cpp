// SPDX-License-Identifier: MIT
#include "reader/SettingsStore.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr kelReaderRegistryKey kStoreHive = kelReaderRegistryKeyCurrentUser;
const std::string kStoreKey = "Software\\Forms\\Reader";

class SettingsStoreTest : public testing::Test {
protected:
    clsKELReader& reader() { return host.reader(); }
    SimulatedRegistry& registry() { return host.machine.registry(); }

    void put(const std::string& name, const std::string& text)
    {
        registry().write(kStoreHive, kStoreKey, name, {RegistryType::Text, text});
    }
    void putNumber(const std::string& name, const std::string& bytes)
    {
        registry().write(kStoreHive, kStoreKey, name, {RegistryType::Number, bytes});
    }
    std::string saved(const std::string& name)
    {
        const auto value = registry().read(kStoreHive, kStoreKey, name);
        return value ? value->data : "(missing)";
    }

    ReaderHost host;
};

TEST_F(SettingsStoreTest, AFreshKeyGivesTheDefaults)
{
    reader().Port(9);
    EXPECT_EQ(reader().LoadSettings(kStoreHive, kStoreKey), True);
    EXPECT_EQ(reader().ReaderType(), kelReaderTypeNone);
    EXPECT_EQ(reader().BaudRate(), kelReaderBaudRate9600);
    EXPECT_EQ(reader().Parity(), "N");
    EXPECT_EQ(reader().DataBits(), kelReaderDataBits7);
    EXPECT_EQ(reader().StopBits(), 1.0F);
    EXPECT_EQ(reader().Port(), 1);
    EXPECT_EQ(reader().SleepTime(), 50);
    EXPECT_EQ(reader().Timeout(), 10);
    EXPECT_EQ(reader().FlowControl(), kelReaderFlowControlNone);
    EXPECT_EQ(reader().Windowing(), False);
    EXPECT_FALSE(registry().exists(kStoreHive, kStoreKey)) << "loading makes no key";
    EXPECT_THAT(host.heard().reports, IsEmpty());
}

TEST_F(SettingsStoreTest, EverySettingComesBack)
{
    reader().ReaderType(kelReaderTypeScantronScanMark2500);
    reader().ReaderGrade(True);
    reader().Barcode(True);
    reader().Duplex(True);
    reader().Feeder(True);
    reader().FlowControl(kelReaderFlowControlHardware);
    reader().MarkCutOff(-4);
    reader().MarkDiscrimination(5);
    reader().Printer()->Enabled(True);
    reader().RecognitionThreshold(6);
    reader().Rejecter(True);
    reader().BaudRate(kelReaderBaudRate256000);
    reader().DataBits(kelReaderDataBits8);
    reader().Parity("E");
    reader().Port(7);
    reader().StopBits(1.5F);
    reader().SleepTime(100000);
    reader().Timeout(600);
    reader().Windowing(True);
    EXPECT_EQ(reader().SaveSettings(kStoreHive, kStoreKey), True);

    clsKELReader other;
    EXPECT_EQ(other.LoadSettings(kStoreHive, kStoreKey), True);
    EXPECT_EQ(other.ReaderType(), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(other.ReaderGrade(), True);
    EXPECT_EQ(other.Barcode(), True);
    EXPECT_EQ(other.Duplex(), True);
    EXPECT_EQ(other.Feeder(), True);
    EXPECT_EQ(other.FlowControl(), kelReaderFlowControlHardware);
    EXPECT_EQ(other.MarkCutOff(), -4);
    EXPECT_EQ(other.MarkDiscrimination(), 5);
    EXPECT_EQ(other.Printer()->Enabled(), True);
    EXPECT_EQ(other.RecognitionThreshold(), 6);
    EXPECT_EQ(other.Rejecter(), True);
    EXPECT_EQ(other.BaudRate(), kelReaderBaudRate256000);
    EXPECT_EQ(other.DataBits(), kelReaderDataBits8);
    EXPECT_EQ(other.Parity(), "E");
    EXPECT_EQ(other.Port(), 7);
    EXPECT_EQ(other.StopBits(), 1.5F);
    EXPECT_EQ(other.SleepTime(), 100000);
    EXPECT_EQ(other.Timeout(), 600);
    EXPECT_EQ(other.Windowing(), True);
}

TEST_F(SettingsStoreTest, TheSavedFormHasItsOwnNamesAndOrder)
{
    reader().ReaderType(kelReaderTypeNCSOpScan5);
    reader().StopBits(2.0F);
    reader().Rejecter(True);
    reader().SaveSettings(kStoreHive, kStoreKey);
    EXPECT_EQ(saved("ScannerType"), "5");
    EXPECT_EQ(saved("Reject"), "True");
    EXPECT_EQ(saved("ReaderGrade"), "False");
    EXPECT_EQ(saved("ScannerStopBits"), "2");
    EXPECT_EQ(saved("ScannerParity"), "N") << "an empty parity is saved as it reads";
    EXPECT_EQ(registry().valueNames(kStoreHive, kStoreKey).size(), 19U);
}

TEST_F(SettingsStoreTest, NumbersHeldAsNumbersAreReadByTheirBytes)
{
    const SettingsStore store(kStoreHive, kStoreKey);
    putNumber("ScannerBaud", std::string("\x80\x25\x00\x00", 4));
    EXPECT_EQ(store.LoadValue("ScannerBaud", "1"), "&h2580");
    reader().LoadSettings(kStoreHive, kStoreKey);
    EXPECT_EQ(reader().BaudRate(), 9600);
    putNumber("ScannerBaud", std::string("\x00\x25\x00\x00", 4));
    EXPECT_EQ(store.LoadValue("ScannerBaud", "1"), "&h") << "a zero low byte cuts the number to nothing";
    putNumber("ScannerBaud", std::string("\x02\x01\x00\x00", 4));
    EXPECT_EQ(store.LoadValue("ScannerBaud", "1"), "&h12") << "an inner byte below 16 loses a digit";
}

TEST_F(SettingsStoreTest, OtherTypesAreEmptyAndLongValuesTheirDefault)
{
    const SettingsStore store(kStoreHive, kStoreKey);
    registry().write(kStoreHive, kStoreKey, "A", {RegistryType::Binary, "text"});
    registry().write(kStoreHive, kStoreKey, "B", {RegistryType::ExpandableText, "%HOME%"});
    put("C", std::string("cut\0off", 7));
    put("D", std::string(1025, 'x'));
    EXPECT_EQ(store.LoadValue("A", "default"), "");
    EXPECT_EQ(store.LoadValue("B", "default"), "%HOME%");
    EXPECT_EQ(store.LoadValue("C", "default"), "cut");
    EXPECT_EQ(store.LoadValue("D", "default"), "default");
    EXPECT_EQ(store.LoadValue("E", "default"), "default");
}

TEST_F(SettingsStoreTest, AnEmptyTextIsSavedAsABlank)
{
    const SettingsStore store(kStoreHive, kStoreKey);
    std::string sValue;
    EXPECT_EQ(store.SaveValue("ScannerParity", sValue), True);
    EXPECT_EQ(sValue, " ");
    EXPECT_EQ(saved("ScannerParity"), " ");
}

TEST_F(SettingsStoreTest, ATextIsNotTouchedWhereItsKeyCannotBeMade)
{
    const SettingsStore store(kStoreHive, kStoreKey);
    registry().access(kStoreHive, SimulatedRegistry::Access::ReadOnly);
    std::string sValue;
    EXPECT_EQ(store.SaveValue("ScannerParity", sValue), False);
    EXPECT_EQ(sValue, "");
}

TEST_F(SettingsStoreTest, TheLengthOfATextIsThatOfItsCharacters)
{
    const SettingsStore store(kStoreHive, kStoreKey);
    const auto umlauts = [](int count) {
        std::string text;
        while (count-- > 0)
            text += "\u00FC";
        return text;
    };
    put("A", umlauts(1024));
    put("B", umlauts(1025));
    registry().write(kStoreHive, kStoreKey, "C", {RegistryType::Binary, umlauts(513)});
    EXPECT_EQ(store.LoadValue("A", "default"), umlauts(1024));
    EXPECT_EQ(store.LoadValue("B", "default"), "default");
    EXPECT_EQ(store.LoadValue("C", "default"), "default");
}

TEST_F(SettingsStoreTest, ATruthValueThatIsNoneEndsTheLoad)
{
    put("ScannerType", "13");
    put("ReaderGrade", "1");
    put("Barcode", "maybe");
    put("ScannerBaud", "1200");
    EXPECT_EQ(reader().LoadSettings(kStoreHive, kStoreKey), False);
    EXPECT_EQ(reader().ReaderType(), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(reader().ReaderGrade(), True);
    EXPECT_NE(reader().BaudRate(), 1200);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 13);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, StartsWith("clsKELReader.LoadSettings"));
}

TEST_F(SettingsStoreTest, NumbersAreTakenAsFarAsTheyGo)
{
    put("MarkCutOff", " 12abc");
    put("MarkDiscrimination", "2.5");
    put("RecognitionThreshold", "text");
    put("SleepTime", "1e3");
    EXPECT_EQ(reader().LoadSettings(kStoreHive, kStoreKey), True);
    EXPECT_EQ(reader().MarkCutOff(), 12);
    EXPECT_EQ(reader().MarkDiscrimination(), 2);
    EXPECT_EQ(reader().RecognitionThreshold(), 0);
    EXPECT_EQ(reader().SleepTime(), 1000);
}

TEST_F(SettingsStoreTest, ANumberBeyondItsTypeIsAReportedOverflow)
{
    put("ScannerPort", "40000");
    EXPECT_EQ(reader().LoadSettings(kStoreHive, kStoreKey), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 6);
}

TEST_F(SettingsStoreTest, ThePrinterDependsOnTheModel)
{
    put("ScannerType", "18");
    put("Printer", "True");
    reader().LoadSettings(kStoreHive, kStoreKey);
    EXPECT_EQ(reader().Printer()->Enabled(), False);
    put("ScannerType", "13");
    reader().LoadSettings(kStoreHive, kStoreKey);
    EXPECT_EQ(reader().Printer()->Enabled(), True);
}

TEST_F(SettingsStoreTest, AStoreWithoutAccessGivesDefaultsAndTakesEverything)
{
    put("ScannerPort", "5");
    registry().access(kStoreHive, SimulatedRegistry::Access::None);
    EXPECT_EQ(reader().LoadSettings(kStoreHive, kStoreKey), True);
    EXPECT_EQ(reader().Port(), 1);
    EXPECT_EQ(reader().SaveSettings(kStoreHive, kStoreKey), True);
    EXPECT_THAT(host.heard().reports, IsEmpty());
}

} // namespace
} // namespace kel::test
