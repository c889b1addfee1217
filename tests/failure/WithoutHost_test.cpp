// SPDX-License-Identifier: MIT
// What the component does without the host: its reports go elsewhere, on that thread and for that time.

#include "failure/WithoutHost.h"

#include "failure/basError.h"
#include "failure/guarded.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace kel {
namespace {

/// Counts what it gets.
class Counting final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        sources.push_back(report.ErrorSource);
        return 0;
    }
    std::vector<std::string> sources;
};

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
    std::shared_ptr<Counting> host = std::make_shared<Counting>();
    std::shared_ptr<Counting> own = std::make_shared<Counting>();
};

TEST_F(WithoutHostTest, ReportsGoToTheOwnObjectForItsTime)
{
    {
        const WithoutHost alone(own);
        fail("KELReader81 - basA.One");
        {
            const auto inner = std::make_shared<Counting>();
            const WithoutHost again(inner);
            fail("KELReader81 - basA.Two");
            EXPECT_EQ(inner->sources.size(), 1U);
        }
        EXPECT_EQ(errorObject(), own);
    }
    fail("KELReader81 - basA.Three");
    ASSERT_EQ(own->sources.size(), 1U);
    EXPECT_THAT(own->sources[0], testing::StartsWith("basA.One"));
    ASSERT_EQ(host->sources.size(), 1U);
    EXPECT_THAT(host->sources[0], testing::StartsWith("basA.Three"));
}

TEST_F(WithoutHostTest, OtherThreadsReportToTheHost)
{
    const WithoutHost alone(own);
    std::thread([this] {
        const PlatformScope there(machine);
        fail("KELReader81 - basA.There");
    }).join();
    EXPECT_THAT(own->sources, testing::IsEmpty());
    EXPECT_EQ(host->sources.size(), 1U);
}

TEST_F(WithoutHostTest, AFailureOfTheSecondTrapIsForTheCallerAlone)
{
    const WithoutHost alone(own);
    EXPECT_THROW(captured("basA.Accessor", []() -> int { throw RuntimeFailure(FailureCode::Overflow); }),
                 RuntimeFailure);
    EXPECT_THAT(machine.screen().boxes(), testing::IsEmpty());
    EXPECT_THAT(own->sources, testing::IsEmpty());
    EXPECT_THAT(host->sources, testing::IsEmpty());
}

} // namespace
} // namespace kel
