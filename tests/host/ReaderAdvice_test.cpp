// SPDX-License-Identifier: MIT
#include "host/ReaderAdvice.h"

#include "drivers/sekonic_usb/basSekonicSR.h"
#include "host/Reader.h"
#include "host/Reports.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "strings/LanguageDatabase.h"
#include "strings/VBLMRTSModule.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using host::adviceOn;
using host::AdviceRow;
using host::Failure;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

Failure report(Int32 text, const std::string& source)
{
    return {.type = kErrorTypeReader, .source = "KELReader81 - " + source, .text = text};
}

Failure failure(Int32 number, const std::string& source)
{
    return {.number = number, .type = kErrorTypeRunTime, .source = "KELReader81 - " + source};
}

TEST(ReaderAdvice, IsThatOfThePageOfTheDriver)
{
    const AdviceRow* const advice = adviceOn(report(472, "basScantron.RejectPageST"));
    ASSERT_NE(advice, nullptr);
    EXPECT_STREQ(advice->remedy, "Take the sheet out by hand and check the cable.");
    EXPECT_EQ(adviceOn(report(472, "basNCS.RejectPageNCS")), nullptr);
}

TEST(ReaderAdvice, WhatIsAsAboveIsSaidAgain)
{
    const AdviceRow* const advice = adviceOn(report(468, "basScantron.CheckStatusST"));
    ASSERT_NE(advice, nullptr);
    EXPECT_STREQ(advice->remedy, "Clear the sheet path and read the sheet again.");
}

TEST(ReaderAdvice, AFailureIsKnownByItsNumber)
{
    const AdviceRow* const advice = adviceOn(failure(9, "basNCS.ReadPageNCS"));
    ASSERT_NE(advice, nullptr);
    EXPECT_EQ(advice->failure, 9);
    EXPECT_EQ(adviceOn(failure(31999, "basNCS.ReadPageNCS")), nullptr);
    // The number of a text is none.
    EXPECT_EQ(adviceOn(failure(472, "basScantron.RejectPageST")), nullptr);
}

TEST(ReaderAdvice, WhatThePagesDoNotHaveHasNone)
{
    EXPECT_EQ(adviceOn(report(0, "basScantron.ReadPageST")), nullptr);
    EXPECT_EQ(adviceOn(report(31998, "basScantron.ReadPageST")), nullptr);
    EXPECT_EQ(adviceOn({}), nullptr);
}

TEST(ReaderAdvice, AppersonsWordsWithoutANumberHaveIt)
{
    const AdviceRow* const advice = adviceOn(report(0, "basApperson.InitReaderAP"));
    ASSERT_NE(advice, nullptr);
    EXPECT_THAT(advice->cause, StartsWith("The reader accepted the reset"));
}

/// Readers on a machine without hardware, in a language.
class AdviceIn : public testing::TestWithParam<const char*> {
protected:
    AdviceIn() : scope_(machine_)
    {
        renewLanguageDatabase();
        languageDatabase().askFor(GetParam());
    }
    ~AdviceIn() override { renewLanguageDatabase(); }

    /// What a reader reports that does not send its n-th byte, nor any after it.
    std::vector<Failure> silentFrom(Int32 byte, kelReaderType model)
    {
        SimulatorOptions options;
        options.faults = {{.kind = Fault::Kind::Silent, .byte = byte}};
        const std::unique_ptr<Simulator> device = makeSimulator(model, std::move(options));
        machine_.attach(1, *device);
        host::Reader reader({.model = host::Model(model), .port = Int16{1}});
        host::Events nobody;
        return reader.read(nobody).failures;
    }

    SimulatedPlatform machine_;
    PlatformScope scope_;
};

TEST_P(AdviceIn, IsThereForAReaderOfEachFamilyThatDoesNotAnswer)
{
    EXPECT_EQ(VBLM_RTString(text::kNotReadyTitle) == "Reader Not Ready", std::string(GetParam()) == "English");
    for (const kelReaderType model : {kelReaderTypeScantronScanMark2500, kelReaderTypeScanningSystemsSR601,
                                      kelReaderTypeNCSOpScan3, kelReaderTypeNCSEZData, kelReaderTypePDIVMR138,
                                      kelReaderTypeChatsworthALSAccelScanOMR, kelReaderTypeAppersonGradeMaster}) {
        const std::vector<Failure> failures = silentFrom(1, model);
        EXPECT_THAT(failures, Not(IsEmpty())) << model;
        for (const Failure& failure : failures) {
            const AdviceRow* const advice = adviceOn(failure);
            ASSERT_NE(advice, nullptr) << model << " " << host::failureSentence(failure);
            EXPECT_STRNE(advice->remedy, "") << model;
        }
    }
}

TEST_P(AdviceIn, IsThereForACodeOfTheUsbLibrary)
{
    std::vector<Failure> failures;
    const host::Reports reports([&](const Failure& failure) { failures.push_back(failure); });
    ReturnErrorSR(0x40110002);
    ASSERT_EQ(failures.size(), 1U);
    const AdviceRow* const advice = adviceOn(failures[0]);
    ASSERT_NE(advice, nullptr) << host::failureSentence(failures[0]);
    EXPECT_STREQ(advice->module, "basSekonicSR");
}

TEST_P(AdviceIn, IsThereForTextsThatArePutTogether)
{
    host::Reader reader({.model = host::Model("13"), .port = Int16{1}});
    reader.object().Port(17);
    host::Events nobody;
    const std::vector<Failure> failures = reader.read(nobody).failures;
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures[0].description.find("%1"), std::string::npos);
    const AdviceRow* const advice = adviceOn(failures[0]);
    ASSERT_NE(advice, nullptr) << host::failureSentence(failures[0]);
    EXPECT_EQ(advice->text, 368);
}

INSTANTIATE_TEST_SUITE_P(Languages, AdviceIn, testing::Values("English", "German"),
                         [](const auto& tested) { return std::string(tested.param); });

} // namespace
} // namespace kel::test
