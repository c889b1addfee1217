// SPDX-License-Identifier: MIT
#include "host/EnumeratorNames.h"
#include "host/ModelLookup.h"
#include "profiles/ReaderModels.h"
#include "tests/host/Refusal.h"

#include <gmock/gmock.h>

namespace kel {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string modelRefusal(const std::string& text)
{
    return test::refusalOf([&] { return host::modelNamed(text); });
}

TEST(ModelLookup, TakesEveryNumberEveryNameAndEveryEnumerator)
{
    ASSERT_EQ(host::readerTypes().members.size(), std::size_t{kReaderTypeCount});
    for (const host::Enumerator& member : host::readerTypes().members) {
        SCOPED_TRACE(member.name);
        EXPECT_EQ(host::modelNamed(std::to_string(member.value)), member.value);
        EXPECT_EQ(host::modelNamed(member.name), member.value);
        EXPECT_EQ(host::modelNamed(ReturnReaderName(static_cast<kelReaderType>(member.value))), member.value);
    }
}

TEST(ModelLookup, CaseAndSignsDoNotMatter)
{
    EXPECT_EQ(host::modelNamed("scantron scanmark 2500"), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(host::modelNamed("KELREADERTYPEPDIVMR138"), kelReaderTypePDIVMR138);
    EXPECT_EQ(host::modelNamed("sr601"), kelReaderTypeScanningSystemsSR601);
    EXPECT_EQ(host::modelNamed("acp 200"), kelReaderTypeChatsworthACP200);
}

TEST(ModelLookup, PartWillDoWhereOnlyOneModelHasIt)
{
    EXPECT_EQ(host::modelNamed("VMR138"), kelReaderTypePDIVMR138);
    EXPECT_EQ(host::modelNamed("Peripheral"), kelReaderTypePDIVMR138);
    EXPECT_EQ(host::modelNamed("8000"), kelReaderTypeScantron8000);
    EXPECT_EQ(host::modelNamed("opscan 4"), kelReaderTypeNCSOpScan4);
    EXPECT_EQ(host::modelNamed("ACF100"), kelReaderTypeChatsworthACF100);
}

TEST(ModelLookup, SeveralModelsAreListed)
{
    EXPECT_EQ(modelRefusal("OMR"),
              "'OMR' fits several models: Chatsworth Data OMR1100 (20), Chatsworth Data OMR2000 (21), "
              "Chatsworth Data ALS AccelScan OMR (22), Scantron iNSIGHT 4 (OMR) (31) and Scantron "
              "iNSIGHT 2 (OMR) (32).");
    EXPECT_EQ(modelRefusal("scantron 8"),
              "'scantron 8' fits several models: Scantron 8000 (16) and Scantron 8400 (17).");
}

TEST(ModelLookup, UnknownModelNamesTheNearest)
{
    EXPECT_EQ(modelRefusal("Scanmrk 2500"),
              "There is no model 'Scanmrk 2500'; the nearest are Scantron Scanmark 2500 (13), Scantron Scanmark 2000 "
              "(11) and Scantron Scanmark 5500 (15) ('kelreader models' lists all).");
    EXPECT_THAT(modelRefusal("noreader1"), Not(HasSubstr("No reader")));
    EXPECT_THAT(modelRefusal("-1"), HasSubstr("There is no model '-1'"));
    EXPECT_THAT(modelRefusal("+13"), HasSubstr("There is no model '+13'"));
    EXPECT_THAT(modelRefusal(" 13"), HasSubstr("There is no model ' 13'"));
    EXPECT_THAT(modelRefusal(""), HasSubstr("There is no model ''"));
}

TEST(ModelLookup, UnknownModelWithoutALetterInCommonNamesNone)
{
    EXPECT_EQ(modelRefusal("zz"), "There is no model 'zz' ('kelreader models' lists all).");
    EXPECT_EQ(modelRefusal("999"), "There is no model '999' ('kelreader models' lists all).");
    EXPECT_EQ(modelRefusal("%"), "There is no model '%' ('kelreader models' lists all).");
}

TEST(ModelLookup, MakersGoByTheirNames)
{
    EXPECT_EQ(host::makerNamed("apperson"), kelProfileTypeAP);
    EXPECT_EQ(host::makerNamed("Sekonic"), kelProfileTypeSekonic);
    EXPECT_EQ(host::makerNamed("SCANTRON"), kelProfileTypeScantron);
    EXPECT_EQ(host::makerNamed("Chatsworth Data"), kelProfileTypeCT);
    EXPECT_EQ(host::makerNamed("pdi"), kelProfileTypePDI);
    EXPECT_EQ(host::makerNamed("Peripheral Dynamics"), kelProfileTypePDI);
    EXPECT_EQ(host::makerNamed("Peripheral Dynamics Inc."), kelProfileTypePDI);
    try {
        static_cast<void>(host::makerNamed("epson"));
        FAIL();
    } catch (const host::UsageError& error) {
        EXPECT_STREQ(error.what(), "There is no maker 'epson'; the makers are apperson, chatsworth, pdi, scantron and "
                                   "sekonic.");
    }
}

} // namespace
} // namespace kel
