// SPDX-License-Identifier: MIT
// The reports of a host's readers beside an error object that the host has registered itself.

#include "host/Reports.h"

#include "failure/basError.h"
#include "host/Reader.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/KeptReports.h"

#include <gmock/gmock.h>

#include <thread>

namespace kel::test {
namespace {

void report(const std::string& text)
{
    reportReaderFault("KELReader81 - basA.One", text, "Title");
}

class HostReportsTest : public testing::Test {
protected:
    HostReportsTest() { clsKELReader().SetError(log); }
    ~HostReportsTest() override { clsKELReader().SetError(nullptr); }

    /// What the host's own error object got.
    [[nodiscard]] std::vector<std::string> logged() const
    {
        std::vector<std::string> texts;
        for (const ErrorReport& kept : log->reports)
            texts.push_back(kept.ErrorDescription);
        return texts;
    }

    SimulatedPlatform machine;
    PlatformScope scope{machine};
    std::shared_ptr<KeptReports> log = std::make_shared<KeptReports>();
};

TEST_F(HostReportsTest, TheHostsErrorObjectStaysForOtherThreadsAndForLater)
{
    std::vector<std::string> taken;
    {
        const host::Reports reports([&](const host::Failure& failure) { taken.push_back(failure.description); });
        report("here");
        std::thread([this] {
            const PlatformScope there(machine);
            report("there");
        }).join();
    }
    report("afterwards");
    EXPECT_THAT(taken, testing::ElementsAre("here"));
    EXPECT_THAT(logged(), testing::ElementsAre("there", "afterwards"));
    EXPECT_THAT(machine.screen().boxes(), testing::IsEmpty());
}

TEST_F(HostReportsTest, AnErrorObjectThatIsSetMeanwhileCountsAfterwards)
{
    const auto other = std::make_shared<KeptReports>();
    std::vector<std::string> taken;
    {
        const host::Reports reports([&](const host::Failure& failure) { taken.push_back(failure.description); });
        clsKELReader().SetError(other);
        report("here");
    }
    report("afterwards");
    EXPECT_THAT(taken, testing::ElementsAre("here"));
    ASSERT_EQ(other->reports.size(), 1U);
    EXPECT_EQ(other->reports[0].ErrorDescription, "afterwards");
    EXPECT_THAT(logged(), testing::IsEmpty());
}

TEST_F(HostReportsTest, AReadersQuestionsAndRangesLeaveTheHostsErrorObjectInPlace)
{
    host::Reader reader({.model = "GradeMaster", .port = Int16{17}});
    EXPECT_EQ(reader.firmware(), std::nullopt);
    EXPECT_EQ(errorObject(), log);
    EXPECT_EQ(reader.locate(), std::nullopt);
    EXPECT_EQ(errorObject(), log);
    for ([[maybe_unused]] const host::Sheet& sheet : reader.sheets(host::OnFailure::Keep))
        ADD_FAILURE() << "nothing can be read";
    EXPECT_FALSE(reader.failures().empty());
    EXPECT_EQ(errorObject(), log);
    EXPECT_THAT(logged(), testing::IsEmpty());
}

} // namespace
} // namespace kel::test
