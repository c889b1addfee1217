// SPDX-License-Identifier: MIT
// Reports of one thread in other hands than those of the process.

#include "failure/ThreadReports.h"

#include "failure/basError.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/KeptReports.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>

namespace kel::test {
namespace {

class ThreadReportsTest : public testing::Test {
protected:
    ThreadReportsTest() { setErrorObject(host); }
    ~ThreadReportsTest() override { setErrorObject(nullptr); }

    [[nodiscard]] static std::vector<std::string> textsOf(const KeptReports& taker)
    {
        std::vector<std::string> texts;
        for (const ErrorReport& report : taker.reports)
            texts.push_back(report.ErrorDescription);
        return texts;
    }

    static void report(const std::string& text) { reportReaderFault("KELReader81 - basA.One", text, "Title"); }

    SimulatedPlatform machine;
    PlatformScope scope{machine};
    std::shared_ptr<KeptReports> host = std::make_shared<KeptReports>();
    std::shared_ptr<KeptReports> first = std::make_shared<KeptReports>();
    std::shared_ptr<KeptReports> second = std::make_shared<KeptReports>();
};

TEST_F(ThreadReportsTest, TheLatestOfAThreadTakesThemAndTheyEndInAnyOrder)
{
    std::optional<ThreadReports> one(std::in_place, first);
    report("one");
    std::optional<ThreadReports> two(std::in_place, second);
    report("two");
    one.reset();
    report("still two");
    two.reset();
    report("host");
    EXPECT_THAT(textsOf(*first), testing::ElementsAre("one"));
    EXPECT_THAT(textsOf(*second), testing::ElementsAre("two", "still two"));
    EXPECT_THAT(textsOf(*host), testing::ElementsAre("host"));
}

TEST_F(ThreadReportsTest, OtherThreadsReportToTheHost)
{
    const ThreadReports own(first);
    std::thread([this] {
        const PlatformScope there(machine);
        report("there");
    }).join();
    report("here");
    EXPECT_THAT(textsOf(*first), testing::ElementsAre("here"));
    EXPECT_THAT(textsOf(*host), testing::ElementsAre("there"));
}

} // namespace
} // namespace kel::test
