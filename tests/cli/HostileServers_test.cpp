// SPDX-License-Identifier: MIT
#include "platform/FileDescriptor.h"
#include "tests/cli/CommandRun.h"
#include "tests/simulators/ShortSession.h"
#include "tests/support/LongRun.h"
#include "tests/support/Patience.h"
#include "tests/support/SideBySide.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <netinet/in.h>
#include <random>
#include <sys/socket.h>
#include <thread>

// Servers of remote lines that mean harm, or are broken: they send without end, or stop in the middle of something. The
// command ends by itself, or at Ctrl-C, with lines as they should be.

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::HasSubstr;

using Words = std::vector<std::string>;

/// Talks to one caller after the other: first the greeting, then what `next` gives, again and again, with a pause
/// after each block. An empty block is the last.
class HostileServer {
public:
    using Next = std::function<std::string()>;

    HostileServer(std::string greeting, Next next, std::chrono::milliseconds pause = 0ms)
        : greeting_(std::move(greeting)), next_(std::move(next)), pause_(pause),
          socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        ::bind(socket_.number(), reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(socket_.number(), 5);
        ::getsockname(socket_.number(), reinterpret_cast<sockaddr*>(&address), &size);
        place_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        thread_ = std::thread([this] { serve(); });
    }
    ~HostileServer()
    {
        ended_ = true;
        ::shutdown(socket_.number(), SHUT_RDWR);
        thread_.join();
    }
    HostileServer(const HostileServer&) = delete;
    HostileServer& operator=(const HostileServer&) = delete;

    [[nodiscard]] const std::string& place() const { return place_; }

    /// Waits until a caller has been sent so many blocks, or is gone again.
    [[nodiscard]] bool waitForBlocks(int count) const
    {
        return waitUntil([&] { return blocks_ >= count || left_ > 0; });
    }

    /// Whether somebody has called.
    [[nodiscard]] bool waitForCaller() const
    {
        return waitUntil([&] { return callers_ > 0; });
    }

private:
    void serve()
    {
        while (!ended_) {
            const FileDescriptor caller(::accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC));
            if (!caller.isOpen())
                return;
            const timeval patience{0, 100'000}; // how soon the end of the test is seen
            ::setsockopt(caller.number(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
            ::setsockopt(caller.number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
            ++callers_;
            harass(caller.number());
            ++left_;
        }
    }

    void harass(int caller)
    {
        for (std::string block = greeting_; !block.empty() && sendAll(caller, block); block = next_()) {
            ++blocks_;
            std::this_thread::sleep_for(pause_);
        }
        // Whoever waits here waits for ever.
        std::array<char, 512> dropped;
        while (!ended_) {
            const ssize_t count = ::recv(caller, dropped.data(), dropped.size(), 0);
            if (count == 0 || (count < 0 && errno != EAGAIN))
                return;
        }
    }

    /// False once the caller, or the test, is gone.
    [[nodiscard]] bool sendAll(int caller, const std::string& block) const
    {
        for (std::size_t sent = 0; sent < block.size();) {
            const ssize_t count = ::send(caller, block.data() + sent, block.size() - sent, MSG_NOSIGNAL);
            if (ended_ || (count < 0 && errno != EAGAIN))
                return false;
            sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        return true;
    }

    std::string greeting_;
    Next next_;
    std::chrono::milliseconds pause_;
    FileDescriptor socket_;
    std::string place_;
    std::atomic<int> callers_ = 0;
    std::atomic<int> blocks_ = 0;
    std::atomic<int> left_ = 0;
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

/// A server that says something and then nothing more.
class SilentServer : public HostileServer {
public:
    explicit SilentServer(std::string lastWords) : HostileServer(std::move(lastWords), [] { return std::string(); }) {}
};

/// A block of so many equal bytes.
HostileServer::Next endless(char byte)
{
    return [block = std::string(65536, byte)] { return block; };
}

HostileServer::Next endlessRandom()
{
    return [random = std::mt19937(7)]() mutable {
        std::string block(65536, '\0');
        for (char& byte : block)
            byte = static_cast<char>(random());
        return block;
    };
}

Words scan(const SweptModel& model, const std::string& device, const std::string& timeout)
{
    return {"scan",
            "--model",
            std::to_string(static_cast<int>(model.type)),
            "--device",
            device,
            "--set",
            "Timeout=" + timeout,
            "--set",
            "SleepTime=5",
            "--max-sheets",
            "2"};
}

/// Whole lines of JSON up to the one event of the end, and no sign of a crash.
void expectWholeReport(const CommandOutcome& outcome)
{
    ASSERT_TRUE(outcome.output.ends_with('\n')) << outcome.output << outcome.errors;
    const Words lines = outcome.lines();
    for (const std::string& line : lines) {
        const nlohmann::json event = nlohmann::json::parse(line, nullptr, false);
        ASSERT_TRUE(event.is_object()) << line;
        EXPECT_EQ(event["event"] == "end", &line == &lines.back()) << line;
    }
    EXPECT_THAT(outcome.status, AnyOf(0, 1)) << outcome.errors;
}

class HostileServers : public testing::TestWithParam<SweptModel> {};

/// Each family against one kind of flood, or against each in a long run.
TEST_P(HostileServers, ThatSendWithoutEndAreNotHeardOut)
{
    const std::vector<HostileServer::Next> floods = {endless('\0'), endlessRandom(), endless('\r'), endless('A')};
    const std::size_t count = sampled(floods.size(), 1);
    const std::size_t first = static_cast<std::size_t>(GetParam().type) % floods.size();
    inParallel(count, [&](std::size_t part) {
        const HostileServer server("x", floods[(first + part) % floods.size()]);
        expectWholeReport(runCommand(scan(GetParam(), "tcp:" + server.place(), "1")));
        tally("sessions with a server that sends without end", 1);
    });
}

/// Some dialogues may take each such byte for a beginning: somebody at the keyboard ends them.
TEST_P(HostileServers, ThatDripAreHeardUntilAnInterrupt)
{
    const HostileServer server(
        "0", [] { return std::string("0"); }, 900ms);
    RunningCommand command(scan(GetParam(), "tcp:" + server.place(), "1"));
    ASSERT_TRUE(server.waitForBlocks(4));
    command.signal(SIGINT);
    const CommandOutcome outcome = command.finish();
    EXPECT_THAT(outcome.status, AnyOf(1, 130)) << outcome.errors;
    EXPECT_TRUE(outcome.output.ends_with('\n')) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("{\"event\":\"end\""));
}

/// Nothing but the interrupt ends this within ten minutes.
TEST_P(HostileServers, ThatSayNothingAreLeftAtAnInterrupt)
{
    const SilentServer server("");
    RunningCommand command(scan(GetParam(), "tcp:" + server.place(), "600"));
    ASSERT_TRUE(server.waitForCaller());
    command.signal(SIGINT);
    const CommandOutcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 130) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("{\"event\":\"end\""));
}

INSTANTIATE_TEST_SUITE_P(Models, HostileServers, testing::ValuesIn(kSweptModels),
                         [](const auto& model) { return nameOf(model.param); });

constexpr SweptModel kScanmark = kSweptModels[1];

// Interpret as command, suboption begin, option 44: the settings of a line.
const std::string kSuboption = "\xFF\xFA\x2C";

TEST(HostileTelnetServer, ThatNeverEndsASuboptionIsNoLine)
{
    const HostileServer server(kSuboption, endless('x'));
    const CommandOutcome outcome = runCommand(scan(kScanmark, "rfc2217:" + server.place(), "1"));
    expectWholeReport(outcome);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr(server.place()));
}

TEST(HostileTelnetServer, IsLeftAtAnInterrupt)
{
    const HostileServer server(kSuboption, endless('x'));
    RunningCommand command(scan(kScanmark, "rfc2217:" + server.place(), "600"));
    ASSERT_TRUE(server.waitForBlocks(2));
    command.signal(SIGINT);
    EXPECT_THAT(command.finish().status, 130);
}

// A handshake record of 16,384 bytes whose content never comes.
const std::string kHalfAHandshake("\x16\x03\x03\x40\x00", 5);

TEST(HostileTlsServer, ThatStopsInTheHandshakeDoesNotAnswer)
{
    const SilentServer server(kHalfAHandshake);
    const CommandOutcome outcome = runCommand(scan(kScanmark, "tls:" + server.place(), "1"));
    expectWholeReport(outcome);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("(tls:" + server.place() + ") cannot be reached: it does not answer"));
}

TEST(HostileTlsServer, ThatStopsInTheHandshakeIsLeftAtAnInterrupt)
{
    const SilentServer server(kHalfAHandshake);
    RunningCommand command(scan(kScanmark, "tls:" + server.place(), "1"));
    ASSERT_TRUE(server.waitForCaller());
    command.signal(SIGINT);
    EXPECT_EQ(command.finish().status, 130);
}

} // namespace
} // namespace kel::test
