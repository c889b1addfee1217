// SPDX-License-Identifier: MIT
#include "options/Errands.h"

#include "platform/posix/EventCall.h"
#include "startup/Main.h"
#include "tests/support/Patience.h"

#include <gmock/gmock.h>

#include <future>
#include <poll.h>
#include <stdexcept>
#include <system_error>

namespace kel::test {
namespace {

class ErrandsTest : public testing::Test {
protected:
    ErrandsTest() { Main(); }

    /// Blocks the errand until the test lets it go on.
    [[nodiscard]] Errands::Errand waitingFor(std::shared_future<void> gate, std::string name)
    {
        return [this, gate = std::move(gate), name = std::move(name)]() -> Errands::Arrival {
            gate.wait();
            return [this, name] { arrived.push_back(name); };
        };
    }
    [[nodiscard]] Errands::Arrival late(std::string name)
    {
        return [this, name = std::move(name)] { arrived.push_back("late " + name); };
    }
    [[nodiscard]] bool takeUntil(Errands& errands, std::size_t count)
    {
        return waitUntil([&] {
            errands.take();
            return arrived.size() >= count;
        });
    }

    std::vector<std::string> arrived;
};

TEST_F(ErrandsTest, WhatComesFirstArrivesFirstAndHereOnly)
{
    std::promise<void> first;
    std::promise<void> second;
    Errands errands;
    const auto here = std::this_thread::get_id();
    std::thread::id where;
    errands.send(waitingFor(first.get_future(), "first"), late("first"));
    errands.send(waitingFor(second.get_future(), "second"), late("second"));
    errands.send([&]() -> Errands::Arrival { return [&] { where = std::this_thread::get_id(); }; }, late("third"));
    EXPECT_TRUE(waitUntil([&] {
        errands.take();
        return where == here;
    }));
    EXPECT_FALSE(errands.isIdle());
    EXPECT_TRUE(arrived.empty());
    second.set_value();
    EXPECT_TRUE(takeUntil(errands, 1));
    first.set_value();
    errands.takeAll();
    EXPECT_TRUE(errands.isIdle());
    EXPECT_EQ(arrived, (std::vector<std::string>{"second", "first"}));
    EXPECT_FALSE(errands.take());
}

TEST_F(ErrandsTest, AfterItsLimitAnErrandIsLateAndItsWaitEnds)
{
    std::promise<void> begun;
    std::promise<void> ended;
    Errands errands;
    errands.send(
        [&]() -> Errands::Arrival {
            begun.set_value();
            const auto wake = std::dynamic_pointer_cast<EventCall>(wakeCallOfThisThread());
            pollfd call{.fd = wake->handle(), .events = POLLIN, .revents = 0};
            ::poll(&call, 1, -1); // only a call ends it
            ended.set_value();
            return [this] { arrived.push_back("too late"); };
        },
        late("one"), std::chrono::milliseconds(1));
    begun.get_future().wait();
    EXPECT_TRUE(takeUntil(errands, 1));
    EXPECT_TRUE(errands.isIdle());
    EXPECT_EQ(ended.get_future().wait_for(kPatience), std::future_status::ready);
    EXPECT_FALSE(errands.take()) << "it has arrived already";
    EXPECT_EQ(arrived, (std::vector<std::string>{"late one"}));
}

TEST_F(ErrandsTest, WhatComesAfterTheEndIsDropped)
{
    std::promise<void> gate;
    std::promise<void> begun;
    std::thread opener;
    {
        Errands errands;
        errands.send(
            [&, wait = gate.get_future().share()]() -> Errands::Arrival {
                begun.set_value();
                wait.wait();
                return [this] { arrived.push_back("dropped"); };
            },
            late("dropped"));
        begun.get_future().wait();
        opener = std::thread([&] { gate.set_value(); });
    }
    opener.join();
    EXPECT_TRUE(arrived.empty());
}

TEST_F(ErrandsTest, WhatFailsArrivesAsIfItWereLate)
{
    Errands errands;
    errands.send([]() -> Errands::Arrival { throw std::runtime_error("no"); }, late("failed"));
    errands.takeAll();
    EXPECT_EQ(arrived, (std::vector<std::string>{"late failed"}));
}

TEST_F(ErrandsTest, WithoutAThreadAnErrandIsLate)
{
    bool hasThreads = false;
    bool hasRun = false;
    {
        Errands errands([&](std::function<void()> work) {
            if (!hasThreads)
                throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
            return std::thread(std::move(work));
        });
        errands.send(
            [&]() -> Errands::Arrival {
                hasRun = true;
                return [] {};
            },
            late("one"));
        hasThreads = true;
        errands.send([this]() -> Errands::Arrival { return [this] { arrived.push_back("two"); }; }, late("two"));
        EXPECT_FALSE(errands.isIdle()) << "it arrives with a turn of the window";
        errands.takeAll();
        EXPECT_TRUE(errands.isIdle());
        EXPECT_FALSE(errands.take());
    } // joins the thread that there is
    EXPECT_THAT(arrived, testing::UnorderedElementsAre("late one", "two"));
    EXPECT_FALSE(hasRun);
}

} // namespace
} // namespace kel::test
