// SPDX-License-Identifier: MIT
// What the component does without the host: its reports go elsewhere, on that thread and for that time.

#include "failure/WithoutHost.h"

#include "failure/basError.h"
#include "failure/guarded.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/KeptReports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace kel {
namespace {

void fail(const char* source)
{
    guarded(source, [] { throw RuntimeFailure(FailureCode::Overflow); });
}

class WithoutHostTest : public testing::Test {
protected:
    WithoutHostTest() { setErrorObject(host); }
    ~WithoutHostTest() override { setErrorObject(nullptr); }

    SimulatedPlatform machine;
    PlatformScope scope{machine};
    std::shared_ptr<test::KeptReports> host = std::make_shared<test::KeptReports>();
    std::shared_ptr<test::KeptReports> own = std::make_shared<test::KeptReports>();
};

TEST_F(WithoutHostTest, ReportsGoToTheOwnObjectForItsTime)
{
    {
        const WithoutHost alone(own);
        fail("KELReader81 - basA.One");
        {
            const auto inner = std::make_shared<test::KeptReports>();
            const WithoutHost again(inner);
            fail("KELReader81 - basA.Two");
            EXPECT_EQ(inner->reports.size(), 1U);
        }
        EXPECT_EQ(errorObject(), own);
    }
    fail("KELReader81 - basA.Three");
    ASSERT_EQ(own->reports.size(), 1U);
    EXPECT_THAT(own->reports[0].ErrorSource, testing::StartsWith("basA.One"));
    ASSERT_EQ(host->reports.size(), 1U);
    EXPECT_THAT(host->reports[0].ErrorSource, testing::StartsWith("basA.Three"));
}

TEST_F(WithoutHostTest, OtherThreadsReportToTheHost)
{
    const WithoutHost alone(own);
    std::thread([this] {
        const PlatformScope there(machine);
        fail("KELReader81 - basA.There");
    }).join();
    EXPECT_THAT(own->reports, testing::IsEmpty());
    EXPECT_EQ(host->reports.size(), 1U);
}

TEST_F(WithoutHostTest, AFailureOfTheSecondTrapIsForTheCallerAlone)
{
    const WithoutHost alone(own);
    EXPECT_THROW(captured("basA.Accessor", []() -> int { throw RuntimeFailure(FailureCode::Overflow); }),
                 RuntimeFailure);
    EXPECT_THAT(machine.screen().boxes(), testing::IsEmpty());
    EXPECT_THAT(own->reports, testing::IsEmpty());
    EXPECT_THAT(host->reports, testing::IsEmpty());
}

} // namespace
} // namespace kel
