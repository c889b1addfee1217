// SPDX-License-Identifier: MIT
#include "platform/posix/Sqlite.h"
#include "store/SheetStore.h"
#include "store/StoreSchema.h"
#include "store/StoredSheets.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace kel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

class StationCommand : public testing::Test {
protected:
    /// A station's file with these readers.
    std::string file(const std::string& readers) const
    {
        return folder_.write("station.json", R"({"station": "hall", "store": "hall.db",
            "retry": {"first": 0.05, "longest": 0.1}, "readers": [)" +
                                                 readers + "]}");
    }

    static std::string simulated(const std::string& name, int count)
    {
        return R"({"name": ")" + name + R"(", "model": 13, "simulate": {"unlimited": true, "count": )" +
               std::to_string(count) + R"(}, "set": {"SleepTime": 1, "Timeout": 600}})";
    }

    [[nodiscard]] std::vector<Int32> numbers(const std::string& reader) const
    {
        std::vector<Int32> found;
        StoredSheets(store_).read({.reader = reader, .failures = false}, 0, [&](const Entry& entry) {
            found.push_back(entry.sheet()->sheet.number);
            return true;
        });
        return found;
    }

    [[nodiscard]] Json state() const
    {
        const CommandOutcome outcome =
            runCommand({"station", folder_.file("station.json"), "--state", "--format", "json"});
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return Json::parse(outcome.output);
    }

    TemporaryFolder folder_;
    std::string store_ = folder_.file("hall.db");
};

TEST_F(StationCommand, ReadsWithAllItsReadersAndKeepsTheSheets)
{
    RunningCommand station({"station", file(simulated("left", 3) + "," + simulated("right", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets; the station tries it again."));
    ASSERT_TRUE(station.waitForError("right: has no more sheets; the station tries it again."));
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2, 3));
    EXPECT_THAT(numbers("right"), testing::ElementsAre(1, 2));
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("left: is stopped."), HasSubstr("right: is stopped.")));
    // However often it was tried again.
    EXPECT_EQ(countOf(outcome.errors, "left: reads."), 1U);
    EXPECT_EQ(countOf(outcome.errors, "left: has no more sheets"), 1U);
}

TEST_F(StationCommand, TellsAReaderThatIsNotThereOnceAndReadsWhenItComes)
{
    const std::string device = folder_.file("reader");
    folder_.write("form.json", R"({"side1Rows": [63], "side1Cols": [48]})");
    RunningCommand station({"station", file(R"({"name": "left", "model": 13, "form": "form.json",
        "set": {"SleepTime": 1, "Timeout": 600}, "device": ")" +
                                            device + R"("})")});
    ASSERT_TRUE(station.waitForError("left: Invalid port number"));
    // Two attempts later, or more, it is still told once.
    ASSERT_TRUE(waitUntil([&, seen = 0, before = std::string()]() mutable {
        const std::string batch = state()["readers"][0]["batch"];
        seen += batch != std::exchange(before, batch) ? 1 : 0;
        return seen > 2;
    }));
    RunningCommand reader({"simulate", "--model", "13", "--link", device, "--count", "2", "--rate", "unlimited"});
    ASSERT_TRUE(station.waitForError("left: reads."));
    ASSERT_TRUE(waitUntil([&] { return numbers("left").size() == 2; }));
    station.signal(SIGINT);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(countOf(outcome.errors, "left: Invalid port number"), 1U);
    EXPECT_THAT(outcome.errors, Not(HasSubstr("8018")));
}

TEST_F(StationCommand, TouchesOnlyTheReadersThatChanged)
{
    RunningCommand station({"station", file(simulated("left", 1) + "," + simulated("right", 1))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    ASSERT_TRUE(station.waitForError("right: has no more sheets"));
    file(simulated("left", 1) + "," + simulated("right", 2) + "," + simulated("new", 1));
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("right: is stopped."));
    ASSERT_TRUE(station.waitForError("new: has no more sheets"));
    ASSERT_TRUE(waitUntil([&] { return numbers("right").size() == 3; }));
    const Json now = state();
    EXPECT_EQ(now["readers"].size(), 3U);
    EXPECT_EQ(now["readers"][0]["name"], "left");
    EXPECT_EQ(now["readers"][0]["sheets"], 1);
    folder_.write("station.json", "{");
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("The station goes on unchanged"));
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(countOf(outcome.errors, "left: is stopped."), 1U);
}

TEST_F(StationCommand, ShowsItsStateToItsUserAndGroup)
{
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    struct stat socket {};
    ASSERT_EQ(::stat((store_ + "-socket").c_str(), &socket), 0);
    EXPECT_EQ(socket.st_mode & 0777, 0660U);
    const Json now = state();
    EXPECT_EQ(now["station"], "hall");
    EXPECT_EQ(now["storeProblem"], "");
    EXPECT_EQ(now["readers"][0]["sheets"], 2);
    EXPECT_EQ(now["readers"][0]["state"], "idle");
    const std::string path = folder_.file("station.json");
    EXPECT_THAT(runCommand({"station", path, "--state"}).output,
                AllOf(StartsWith("Station hall, since "), HasSubstr("\nleft "), HasSubstr(" idle ")));
    EXPECT_THAT(runCommand({"station", path, "--state", "--format", "metrics"}).output,
                AllOf(HasSubstr("\nkelreader_sheets_total{station=\"hall\",reader=\"left\"} 2\n"),
                      HasSubstr("\nkelreader_reader_state{station=\"hall\",reader=\"left\",state=\"idle\"} 1\n"),
                      HasSubstr("\nkelreader_reader_state{station=\"hall\",reader=\"left\",state=\"failed\"} 0\n")));
    EXPECT_THAT(runCommand({"station", path}).errors, HasSubstr("is in use by station hall, process "));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    EXPECT_FALSE(std::filesystem::exists(store_ + "-socket"));
    EXPECT_THAT(runCommand({"station", path, "--state"}).errors, HasSubstr("No station is at work at "));
}

TEST_F(StationCommand, IsRefusedOnTheStoreOfAnother)
{
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    const std::string other = folder_.write("other.json", R"({"station": "other", "store": "hall.db", "readers": [)" +
                                                              simulated("right", 5) + "]}");
    const CommandOutcome second = runCommand({"station", other});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "kelreader: The store " + store_ + " is in use by station hall, process " +
                                 std::to_string(station.process()) +
                                 ", and a store has one writer; end that one, or name another store.\n");
    EXPECT_THAT(numbers("right"), testing::IsEmpty());
    // The first one's socket, lock and sheets are as they were.
    EXPECT_EQ(state()["readers"][0]["sheets"], 2);
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2));
}

TEST_F(StationCommand, LeavesAStoreOfANewerVersionAlone)
{
    {
        const SheetStore store(store_, "a test");
    }
    SqliteDatabase(store_, SqliteDatabase::Mode::Shared, 0).run("PRAGMA user_version = 99");
    const CommandOutcome refused = runCommand({"station", file(simulated("left", 2))});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(countOf(refused.errors, "\n"), 1U);
    EXPECT_THAT(refused.errors, HasSubstr("has version 99, and this program knows versions up to"));
    EXPECT_FALSE(std::filesystem::exists(store_ + "-socket"));
    SqliteDatabase(store_, SqliteDatabase::Mode::Shared, 0)
        .run(("PRAGMA user_version = " + std::to_string(kStoreVersion)).c_str());
    EXPECT_THAT(numbers("left"), testing::IsEmpty());
}

TEST_F(StationCommand, BringsAStoreOfAnOlderVersionUpToDate)
{
    folder_.write("hall.db", "");
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
}

TEST_F(StationCommand, ChecksAFile)
{
    const CommandOutcome sound = runCommand({"station", "--check", file(simulated("left", 2))});
    EXPECT_EQ(sound.status, 0);
    EXPECT_THAT(sound.output, HasSubstr("station hall, 1 reader, nothing is wrong.\n"));
    const CommandOutcome wrong = runCommand({"station", "--check", file(R"({"name": "x"}, 5)")});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(countOf(wrong.errors, "kelreader: "), 2U);
    EXPECT_FALSE(std::filesystem::exists(store_));
}

/// The end of a socket at which a service manager listens.
class ServiceManager {
public:
    explicit ServiceManager(const std::string& file)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        file.copy(address.sun_path, sizeof address.sun_path - 1);
        ::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
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

} // namespace
} // namespace kel::test
