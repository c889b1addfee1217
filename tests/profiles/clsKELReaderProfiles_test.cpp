// SPDX-License-Identifier: MIT
#include "profiles/KeyedCollection.h"
#include "profiles/clsKELReaderProfiles.h"

#include "failure/basError.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "strings/VBLMRTSModule.h"
#include "tests/support/KeptReports.h"
#include "types/Text.h"

#include <gtest/gtest.h>

namespace kel::test {

namespace {

class Profiles : public testing::Test {
protected:
    Profiles() : scope_(machine_) { setErrorObject(error_); }
    ~Profiles() override { setErrorObject(nullptr); }

    [[nodiscard]] const std::vector<ErrorReport>& reports() const { return error_->reports; }

    std::vector<Int32> types()
    {
        std::vector<Int32> result;
        for (Int32 position = 1; position <= profiles_.Count(); ++position)
            result.push_back(profiles_.Item(position)->ReaderType());
        return result;
    }

    void choose(int bits) { profiles_.ProfileType(static_cast<kelProfileType>(bits)); }

    void expectOneRunTimeReport(FailureCode code)
    {
        ASSERT_EQ(reports().size(), 1U);
        const ErrorReport& report = reports().front();
        EXPECT_EQ(report.ErrorNumber, static_cast<Int32>(code));
        EXPECT_EQ(report.ErrorType, kErrorTypeRunTime);
        EXPECT_EQ(report.ErrorDescription, failureText(code));
        EXPECT_GT(report.LineNumber, 0);
        EXPECT_EQ(report.ErrorSource,
                  "clsKELReaderProfiles.Remove" + VBLM_RTString(TextNumber(244)) + CStr(report.LineNumber));
        EXPECT_EQ(report.ErrorTitle, "");
        EXPECT_EQ(report.ButtonDefault, 1);
        EXPECT_EQ(report.ShowHelp, True);
        EXPECT_FALSE(report.vSilent);
    }

    SimulatedPlatform machine_;
    PlatformScope scope_;
    std::shared_ptr<KeptReports> error_ = std::make_shared<KeptReports>();
    clsKELReaderProfiles profiles_;
};

TEST_F(Profiles, NewCollectionIsFull)
{
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount);
    EXPECT_EQ(profiles_.ProfileType(), kelProfileTypeAll);
    EXPECT_TRUE(reports().empty());
}

TEST_F(Profiles, TextIsAKeyAndANumberAPosition)
{
    EXPECT_EQ(profiles_.Item("0")->ReaderType(), kelReaderTypeNone);
    EXPECT_EQ(profiles_.Item("0"), profiles_.Item(1));
    EXPECT_EQ(profiles_.Item("40")->ReaderType(), kelReaderTypeAppersonAdvantage1200);
    EXPECT_EQ(profiles_.Item("40"), profiles_.Item(2));
    EXPECT_EQ(profiles_.Item(std::string("40")), profiles_.Item(2));
}

TEST_F(Profiles, AModelPassedAsANumberIsAPosition)
{
    // Position 16 is that of the OpScan 2, and 16 the number of the Scantron 8000.
    EXPECT_EQ(profiles_.Item(kelReaderTypeScantron8000)->ReaderType(), kelReaderTypeNCSOpScan2);
    EXPECT_EQ(profiles_.Item(CStr(kelReaderTypeScantron8000))->ReaderType(), kelReaderTypeScantron8000);
}

TEST_F(Profiles, UnknownIndexGivesNothingWithoutAReport)
{
    for (const char* key : {"99", "-1", "", " 40", "40 ", "040", "Apperson Advantage 1200"}) {
        EXPECT_TRUE(profiles_.Item(key).isNothing()) << key;
        EXPECT_EQ(profiles_.Exists(key), False) << key;
    }
    for (const Int32 position : {0, -1, kReaderTypeCount + 1, -2147483647 - 1, 2147483647}) {
        EXPECT_TRUE(profiles_.Item(position).isNothing()) << position;
        EXPECT_EQ(profiles_.Exists(position), False) << position;
    }
    EXPECT_TRUE(reports().empty());
}

TEST_F(Profiles, KnownIndexExists)
{
    EXPECT_EQ(profiles_.Exists("0"), True);
    EXPECT_EQ(profiles_.Exists("41"), True);
    EXPECT_EQ(profiles_.Exists(1), True);
    EXPECT_EQ(profiles_.Exists(kReaderTypeCount), True);
}

TEST_F(Profiles, NoneAloneWhenNoMakerIsChosen)
{
    choose(kelProfileTypeNone);
    EXPECT_EQ(types(), std::vector<Int32>{0});
    EXPECT_EQ(profiles_.ProfileType(), kelProfileTypeNone);
}

TEST_F(Profiles, OneMakerIsChosen)
{
    choose(kelProfileTypeAP);
    EXPECT_EQ(types(), (std::vector<Int32>{0, 40, 1, 39, 18}));
    EXPECT_EQ(profiles_.Exists("13"), False);
}

TEST_F(Profiles, AppersonComesBeforeChatsworthHoweverTheyAreNamed)
{
    const std::vector<Int32> both = {0, 40, 1, 39, 18, 37, 35, 41, 22, 20, 21};
    choose(kelProfileTypeCT + kelProfileTypeAP);
    EXPECT_EQ(types(), both);
    choose(kelProfileTypeNone);
    choose(kelProfileTypeAP + kelProfileTypeCT);
    EXPECT_EQ(types(), both);
}

TEST_F(Profiles, AllBitsGiveTheOrderOfTheCatalogue)
{
    const std::vector<Int32> all = types();
    choose(kelProfileTypeNone);
    choose(kelProfileTypeSekonic + kelProfileTypeScantron + kelProfileTypePDI + kelProfileTypeCT + kelProfileTypeAP);
    EXPECT_EQ(types(), all);
}

TEST_F(Profiles, BitsAboveTheLastMakerAreNotLookedAt)
{
    choose(32 + kelProfileTypePDI);
    EXPECT_EQ(types(), (std::vector<Int32>{0, 24}));
    EXPECT_EQ(static_cast<Int32>(profiles_.ProfileType()), 48);
    choose(-1);
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount);
}

TEST_F(Profiles, RemovedRecordStaysGoneUnderTheSameFilter)
{
    profiles_.Remove("40");
    EXPECT_EQ(profiles_.Exists("40"), False);
    EXPECT_EQ(profiles_.Item(2)->ReaderType(), kelReaderTypeAppersonAdvantageLink);
    choose(kelProfileTypeAll);
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount - 1);
    EXPECT_EQ(profiles_.Exists("40"), False);
}

TEST_F(Profiles, AnotherFilterBringsARemovedRecordBack)
{
    profiles_.Remove("40");
    choose(kelProfileTypeAP);
    EXPECT_EQ(profiles_.Exists("40"), True);
}

TEST_F(Profiles, EmptiedCollectionIsFilledByTheSameFilter)
{
    profiles_.RemoveAll();
    EXPECT_EQ(profiles_.Count(), 0);
    EXPECT_TRUE(profiles_.Item(1).isNothing());
    choose(kelProfileTypeAll);
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount);
    EXPECT_TRUE(reports().empty());
}

TEST_F(Profiles, RemoveAllOfNothingIsNoFailure)
{
    profiles_.RemoveAll();
    profiles_.RemoveAll();
    EXPECT_TRUE(reports().empty());
}

TEST_F(Profiles, RemoveByPosition)
{
    profiles_.Remove(1);
    EXPECT_EQ(profiles_.Exists("0"), False);
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount - 1);
    profiles_.Remove(kReaderTypeCount - 1);
    EXPECT_EQ(profiles_.Exists("34"), False);
}

TEST_F(Profiles, RecordsAreShared)
{
    profiles_.Item("13")->MaxCols(7);
    EXPECT_EQ(profiles_.Item("13")->MaxCols(), 7);
    choose(kelProfileTypeAll);
    EXPECT_EQ(profiles_.Item("13")->MaxCols(), 7);
}

TEST_F(Profiles, OnlyARefillRestoresAChangedRecord)
{
    const Reference<clsKELReaderProfile> kept = profiles_.Item("13");
    kept->MaxCols(7);
    choose(kelProfileTypeScantron);
    EXPECT_EQ(profiles_.Item("13")->MaxCols(), 48);
    EXPECT_EQ(kept->MaxCols(), 7);
}

TEST_F(Profiles, CollectionsDoNotShareRecords)
{
    profiles_.Item("13")->MaxCols(7);
    EXPECT_EQ(clsKELReaderProfiles().Item("13")->MaxCols(), 48);
}

TEST_F(Profiles, NameFollowsTheTypeAndTheKeyDoesNot)
{
    profiles_.Item("40")->ReaderType(kelReaderTypePDIVMR138);
    EXPECT_EQ(profiles_.Item("40")->ReaderName(), "Peripheral Dynamics Inc. VMR138");
    EXPECT_EQ(profiles_.Item("40"), profiles_.Item(2));
    EXPECT_NE(profiles_.Item("40"), profiles_.Item("24"));
}

TEST_F(Profiles, RemovingAnUnknownKeyIsReported)
{
    profiles_.Remove("99");
    expectOneRunTimeReport(FailureCode::InvalidProcedureCall);
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount);
}

class ProfilesPosition : public Profiles, public testing::WithParamInterface<Int32> {};

TEST_P(ProfilesPosition, RemovingAPositionThatIsNotThereIsReported)
{
    profiles_.Remove(GetParam());
    expectOneRunTimeReport(FailureCode::SubscriptOutOfRange);
    EXPECT_EQ(profiles_.Count(), kReaderTypeCount);
}

INSTANTIATE_TEST_SUITE_P(Profiles, ProfilesPosition,
                         testing::Values(0, -1, kReaderTypeCount + 1, -2147483647 - 1, 2147483647));

TEST(ProfileKeys, AKeyIsTakenOnce)
{
    KeyedCollection<int> numbers;
    numbers.Add(makeReference<int>(1), "one");
    try {
        numbers.Add(makeReference<int>(2), "one");
        FAIL() << "the key was taken twice";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.code(), FailureCode::KeyAlreadyUsed);
    }
    EXPECT_EQ(numbers.Count(), 1);
    EXPECT_EQ(*numbers.Item(std::string_view("one")), 1);
}

} // namespace

} // namespace kel::test
