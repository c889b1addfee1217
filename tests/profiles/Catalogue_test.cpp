// SPDX-License-Identifier: MIT
#include "profiles/Catalogue.h"
#include "profiles/clsKELReaderProfiles.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "strings/VBLMRTSModule.h"
#include "tests/profiles/ExpectedCatalogue.h"
#include "tests/profiles/ProfileText.h"
#include "types/Text.h"

#include <gtest/gtest.h>

namespace kel::test {

namespace {

class Catalogue : public testing::Test {
protected:
    Catalogue() : scope_(machine_) {}

    Reference<clsKELReaderProfile> item(std::string_view key) { return profiles_.Item(key); }

    std::vector<std::string> numbers()
    {
        std::vector<std::string> result;
        for (Int32 position = 1; position <= profiles_.Count(); ++position)
            result.push_back(CStr(profiles_.Item(position)->ReaderType()));
        return result;
    }

    SimulatedPlatform machine_;
    PlatformScope scope_;
    clsKELReaderProfiles profiles_;
};

TEST_F(Catalogue, EveryValueOfEveryRecordIsAsTheTablesHaveIt)
{
    const ExpectedCatalogue expected;
    ASSERT_EQ(std::ssize(expected.models()), kReaderTypeCount);
    for (const auto& [name, model] : expected.models()) {
        const Reference<clsKELReaderProfile> profile = item(model.Number);
        ASSERT_TRUE(profile) << name;
        const RecordText record = recordText(*profile);
        EXPECT_EQ(record.size(), 59U);
        for (const auto& [property, value] : record) {
            ASSERT_TRUE(model.Record.contains(property)) << property << " is in no table for " << name;
            EXPECT_EQ(value, model.Record.at(property)) << property << " of " << name;
        }
        EXPECT_EQ(record.size(), model.Record.size()) << name;
    }
}

TEST_F(Catalogue, PositionsAreThoseOfTheRoster)
{
    const ExpectedCatalogue expected;
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount);
    for (const auto& [name, model] : expected.models())
        EXPECT_EQ(profiles_.Item(model.Position), item(model.Number)) << name;
}

TEST_F(Catalogue, EveryMakerHasItsModelsInTheOrderOfTheRoster)
{
    const ExpectedCatalogue expected;
    const std::map<std::string, kelProfileType> makers = {{"AP", kelProfileTypeAP},
                                                          {"CT", kelProfileTypeCT},
                                                          {"PDI", kelProfileTypePDI},
                                                          {"Scantron", kelProfileTypeScantron},
                                                          {"Sekonic", kelProfileTypeSekonic}};
    for (const auto& [maker, bit] : makers) {
        profiles_.ProfileType(bit);
        std::vector<std::string> models = expected.numbersOf(maker);
        models.insert(models.begin(), "0");
        EXPECT_EQ(numbers(), models) << maker;
    }
}

TEST_F(Catalogue, NoneHasNothingButADefaultRecord)
{
    EXPECT_EQ(recordText(*item("0")), recordText(clsKELReaderProfile()));
}

TEST_F(Catalogue, EZDataAlwaysRejectsAndTheUserNeverSeesIt)
{
    EXPECT_EQ(item("23")->MaxCols(), 12);
    EXPECT_EQ(item("23")->Rejecter(), True);
    EXPECT_EQ(item("23")->RejecterEnabled(), False);
    EXPECT_EQ(item("23")->RejecterVisible(), False);
}

TEST_F(Catalogue, OfTheChatsworthSheetReadersOnlyTheACF100IsSearchedFor)
{
    EXPECT_EQ(item("37")->LocateEnabled(), True);
    EXPECT_EQ(item("37")->FirmwareEnabled(), True);
    for (const char* key : {"35", "41"}) {
        EXPECT_EQ(item(key)->LocateEnabled(), False) << key;
        EXPECT_EQ(item(key)->FirmwareEnabled(), True) << key;
    }
}

TEST_F(Catalogue, ES2800IsSlowerThanItsNeighbour)
{
    EXPECT_EQ(item("29")->BaudRate(), kelReaderBaudRate9600);
    EXPECT_EQ(item("28")->BaudRate(), kelReaderBaudRate19200);
}

TEST_F(Catalogue, TheSmallestUsbReaderHasNoRejectHopper)
{
    EXPECT_EQ(item("36")->Duplex(), False);
    EXPECT_EQ(item("36")->DuplexEnabled(), True);
    EXPECT_EQ(item("36")->RejecterEnabled(), False);
    for (const char* key : {"30", "33", "34"}) {
        EXPECT_EQ(item(key)->Duplex(), True) << key;
        EXPECT_EQ(item(key)->RejecterEnabled(), True) << key;
    }
}

TEST_F(Catalogue, TwoSekonicScalesBeginAtOne)
{
    EXPECT_EQ(item("19")->RecognitionThresholdMinimum(), 1);
    EXPECT_EQ(item("19")->RecognitionThresholdMaximum(), 8);
    EXPECT_EQ(item("38")->RecognitionThresholdMinimum(), 1);
    EXPECT_EQ(item("38")->RecognitionThresholdMaximum(), 16);
}

TEST_F(Catalogue, GradeMasterIsLockedThroughout)
{
    const Reference<clsKELReaderProfile> profile = item("18");
    for (const auto& [name, value] : recordText(*profile)) {
        const bool option = name.starts_with("ReaderGrade") || name.starts_with("Barcode") ||
                            name.starts_with("Duplex") || name.starts_with("Feeder") || name.starts_with("Rejecter") ||
                            name.starts_with("Printer") || name.starts_with("Windowing");
        if (option) {
            EXPECT_EQ(value, name.ends_with("Visible") ? "True" : "False") << name;
        }
    }
    EXPECT_EQ(profile->MarkCutOff(), 1);
    EXPECT_EQ(profile->MarkDiscrimination(), 1);
    EXPECT_EQ(profile->RecognitionThreshold(), 1);
    EXPECT_EQ(profile->RecognitionThresholdMinimum(), 0);
    EXPECT_EQ(profile->RecognitionThresholdMaximum(), 0);
}

TEST_F(Catalogue, UsbReadersShowTheLineGreyedOutAndTheFixedOnesHideIt)
{
    EXPECT_EQ(item("30")->InterfaceType(), kelReaderInterfaceTypeUSB);
    EXPECT_EQ(item("30")->BaudRateEnabled(), False);
    EXPECT_EQ(item("30")->BaudRateVisible(), True);
    EXPECT_EQ(item("30")->PortEnabled(), False);
    EXPECT_EQ(item("30")->SleepTimeEnabled(), True);
    EXPECT_EQ(item("37")->InterfaceType(), kelReaderInterfaceTypeSerial);
    EXPECT_EQ(item("37")->BaudRateVisible(), False);
    EXPECT_EQ(item("37")->PortEnabled(), True);
    EXPECT_EQ(item("37")->RecognitionThresholdEnabled(), True);
    EXPECT_EQ(item("37")->MarkDiscriminationVisible(), False);
}

TEST(CatalogueSigns, ARowOfSignsSaysDefaultPermissionAndVisibility)
{
    constexpr ModelOptions options("- + o x (-) (+)   -  yes no");
    EXPECT_FALSE(options.ReaderGrade.On);
    EXPECT_EQ(options.ReaderGrade.User, UserMay::See);
    EXPECT_TRUE(options.Barcode.On);
    EXPECT_EQ(options.Barcode.User, UserMay::See);
    EXPECT_FALSE(options.Duplex.On);
    EXPECT_EQ(options.Duplex.User, UserMay::Change);
    EXPECT_TRUE(options.Feeder.On);
    EXPECT_EQ(options.Feeder.User, UserMay::Change);
    EXPECT_FALSE(options.Rejecter.On);
    EXPECT_EQ(options.Rejecter.User, UserMay::SeeNothing);
    EXPECT_TRUE(options.Printer.On);
    EXPECT_EQ(options.Printer.User, UserMay::SeeNothing);
    EXPECT_EQ(options.Windowing.User, UserMay::See);
    EXPECT_TRUE(options.Locate);
    EXPECT_FALSE(options.Firmware);
}

} // namespace

} // namespace kel::test
