// SPDX-License-Identifier: MIT
#include "tests/cli/StationCommandTest.h"
#include "tests/support/Patience.h"

#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <system_error>

namespace kel::test {
namespace {

/// The end of a socket at which a service manager listens.
class ServiceManager {
public:
    explicit ServiceManager(const std::string& file)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        file.copy(address.sun_path, sizeof address.sun_path - 1);
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            throw std::system_error(errno, std::generic_category(), file);
        const timeval patience{std::chrono::seconds(kPatience).count(), 0};
        ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        ::setenv("NOTIFY_SOCKET", file.c_str(), 1);
        ::setenv("WATCHDOG_USEC", "100000", 1);
    }
    ~ServiceManager()
    {
        ::unsetenv("NOTIFY_SOCKET");
        ::unsetenv("WATCHDOG_USEC");
        ::close(socket_);
    }
    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;

    /// Lets the queue of notices be full: whoever sends one waits.
    void fillUp() const
    {
        sockaddr_un address{};
        socklen_t size = sizeof address;
        ASSERT_EQ(::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size), 0);
        const int sender = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        while (::sendto(sender, "", 0, MSG_DONTWAIT, reinterpret_cast<const sockaddr*>(&address), size) == 0) {
        }
        ::close(sender);
    }

    /// The next one, which is empty if none comes.
    [[nodiscard]] std::string next() const
    {
        std::string text(256, '\0');
        const ssize_t count = ::recv(socket_, text.data(), text.size(), 0);
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

private:
    int socket_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

TEST_F(StationCommand, DoesNotWaitForAServiceManagerThatIsSlowToRead)
{
    const ServiceManager manager(folder_.file("notify"));
    RunningCommand station({"station", file(simulated("left", 0))});
    EXPECT_EQ(manager.next(), "READY=1");
    manager.fillUp();
    EXPECT_EQ(state()["readers"].size(), 1U);
    ASSERT_TRUE(waitUntil([&] { return manager.next() == "WATCHDOG=1"; }));
    station.signal(SIGTERM);
    ASSERT_TRUE(waitUntil([&] { return manager.next() == "STOPPING=1"; }));
    EXPECT_EQ(station.finish().status, 0);
}

TEST_F(StationCommand, TellsTheServiceManagerThatItIsReadyLivesAndStops)
{
    const ServiceManager manager(folder_.file("notify"));
    RunningCommand station({"station", file(simulated("left", 0))});
    EXPECT_EQ(manager.next(), "READY=1");
    EXPECT_EQ(manager.next(), "WATCHDOG=1");
    EXPECT_EQ(manager.next(), "WATCHDOG=1");
    station.signal(SIGTERM);
    std::string last;
    while ((last = manager.next()) == "WATCHDOG=1") {
    }
    EXPECT_EQ(last, "STOPPING=1");
    EXPECT_EQ(station.finish().status, 0);
}

/// A station with a reader that does not end before `letGo`: it opens its trace, from which nobody reads.
class AStationWithASlowReader : public StationCommand {
protected:
    AStationWithASlowReader()
    {
        EXPECT_EQ(::mkfifo(trace_.c_str(), 0600), 0);
        file(R"({"name": "slow", "model": 13, "trace": "trace", "simulate": {"unlimited": true}},)" +
             simulated("left", 0));
    }

    /// Leaves the slow reader out of the file, and waits until the station has taken note of it.
    void reload(RunningCommand& station) const
    {
        ASSERT_TRUE(waitUntil([&] { return manager_.next() == "READY=1"; }));
        ASSERT_TRUE(station.waitForError("left: has no more sheets"));
        file(simulated("left", 0) + "," + simulated("new", 0));
        station.signal(SIGHUP);
        ASSERT_TRUE(waitUntil([&] { return manager_.next() == "RELOADING=1"; }));
    }

    void letGo() const { static_cast<void>(::open(trace_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)); }

    const std::string trace_ = folder_.file("trace");
    const ServiceManager manager_{folder_.file("notify")};
};

TEST_F(AStationWithASlowReader, SaysThatItLivesWhileItReloads)
{
    RunningCommand station({"station", folder_.file("station.json")});
    reload(station);
    EXPECT_EQ(manager_.next(), "WATCHDOG=1");
    EXPECT_EQ(manager_.next(), "WATCHDOG=1");
    EXPECT_EQ(state()["readers"].size(), 1U);
    station.signal(SIGHUP); // another one, which waits for the first
    letGo();
    ASSERT_TRUE(station.waitForError("slow: is stopped."));
    ASSERT_TRUE(station.waitForError("new: has no more sheets"));
    for (const char* notice : {"READY=1", "RELOADING=1", "READY=1"})
        ASSERT_TRUE(waitUntil([&] { return manager_.next() == notice; }));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
}

TEST_F(AStationWithASlowReader, CanBeStoppedWhileItReloads)
{
    RunningCommand station({"station", folder_.file("station.json")});
    reload(station);
    station.signal(SIGTERM);
    ASSERT_TRUE(waitUntil([&] { return manager_.next() == "STOPPING=1"; }));
    letGo();
    EXPECT_EQ(station.finish().status, 0);
}

} // namespace
} // namespace kel::test
