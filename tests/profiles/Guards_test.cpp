// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

namespace kel::test {
namespace {

const std::vector<GuardCase> kProfileGuards = {
    {"clsKELReaderProfiles.Count", FailsBy::Processor, 0,
     [](GuardBench&) {
         const clsKELReaderProfiles profiles;
         SteppedFault::arm();
         const Int32 lResult = profiles.Count();
         SteppedFault::disarm();
         EXPECT_EQ(lResult, 0);
     }},
    {"clsKELReaderProfiles.Item", FailsBy::Processor, 0,
     [](GuardBench&) {
         const clsKELReaderProfiles profiles;
         SteppedFault::arm();
         const Reference<clsKELReaderProfile> cResult = profiles.Item(1);
         SteppedFault::disarm();
         EXPECT_TRUE(cResult.isNothing());
     }},
    {"clsKELReaderProfiles.ProfileType", FailsBy::Caller, 7,
     [](GuardBench&) {
         clsKELReaderProfiles profiles;
         FailingAllocation::arm(1, 2);
         profiles.ProfileType(kelProfileTypeScantron);
         FailingAllocation::disarm();
         EXPECT_EQ(profiles.ProfileType(), kelProfileTypeScantron);
         EXPECT_EQ(profiles.Count(), 0);
     }},
    {"clsKELReaderProfiles.Remove", FailsBy::Statement, 5,
     [](GuardBench&) {
         clsKELReaderProfiles profiles;
         profiles.Remove("99");
         EXPECT_EQ(profiles.Count(), kReaderTypeCount);
     }},
    {"clsKELReaderProfiles.Remove", FailsBy::Statement, 9,
     [](GuardBench&) {
         clsKELReaderProfiles profiles;
         profiles.Remove(kReaderTypeCount + 1);
         EXPECT_EQ(profiles.Count(), kReaderTypeCount);
     }},
    {"clsKELReaderProfiles.RemoveAll", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderProfiles profiles;
         SteppedFault::arm();
         profiles.RemoveAll();
         SteppedFault::disarm();
         EXPECT_EQ(profiles.Count(), kReaderTypeCount);
     }},
    {"clsKELReaderProfiles.FillProfiles", FailsBy::Statement, 7,
     [](GuardBench&) {
         clsKELReaderProfiles profiles;
         FailingAllocation::arm();
         profiles.ProfileType(kelProfileTypeScantron);
         FailingAllocation::disarm();
         EXPECT_EQ(profiles.Count(), 0);
     }},
};

const GuardTable profileGuards("ProfileGuards", kProfileGuards);

} // namespace
} // namespace kel::test
