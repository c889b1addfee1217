// SPDX-License-Identifier: MIT
#include "tests/cli/StationCommandTest.h"
#include "tests/support/Patience.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <optional>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>

namespace kel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

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
    const Json left = state()["readers"][0];
    EXPECT_THAT(left["advice"].get<std::string>(), HasSubstr("correct its \"device\" in the station file"));
    station.signal(SIGINT);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, Not(HasSubstr("ports set"))); // the file's device is no port's
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

TEST_F(StationCommand, TakesAnotherStoreAtItsNextStartAlone)
{
    const std::string path = file(simulated("left", 1));
    RunningCommand station({"station", path});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    folder_.write("station.json", R"({"station": "hall", "store": "other.db", "socket": "hall.db-socket",
        "retry": {"first": 0.05, "longest": 0.1}, "readers": [)" +
                                      simulated("left", 1) + "]}");
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("Settings of the station as a whole have changed; they take effect at the next "
                                     "start."));
    EXPECT_EQ(state()["store"], store_);
    station.signal(SIGTERM);
    EXPECT_EQ(countOf(station.finish().errors, "left: is stopped."), 1U);
    EXPECT_FALSE(std::filesystem::exists(folder_.file("other.db")));
}

TEST_F(StationCommand, GivesAdviceWhateverTheLanguage)
{
    RunningCommand station({"station", "--language", "German", file(R"({"name": "left", "model": 13,
        "simulate": {"unlimited": true, "count": 2, "faults": ["jam@sheet=1"]},
        "set": {"SleepTime": 1, "Timeout": 600}})")});
    ASSERT_TRUE(station.waitForError("Clear the sheet path and read the sheet again."));
    const Json left = state()["readers"][0];
    EXPECT_EQ(left["advice"], "Clear the sheet path and read the sheet again.");
    EXPECT_THAT(left["problem"].get<std::string>(), AllOf(Not(HasSubstr("Reader Fault")), HasSubstr("(basScantron.")));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
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

TEST_F(StationCommand, LeavesTheSocketOfAnotherOneAlone)
{
    const auto named = [&](const std::string& name, const std::string& store) {
        return folder_.write(name, R"({"station": ")" + store + R"(", "store": ")" + store +
                                       R"(.db", "socket": "shared", "readers": [)" + simulated("left", 2) + "]}");
    };
    const std::string first = named("station.json", "hall");
    RunningCommand station({"station", first});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    const CommandOutcome second = runCommand({"station", named("other.json", "other")});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "kelreader: The socket " + folder_.file("shared") +
                                 " is that of a station at work; name another one as \"socket\".\n");
    EXPECT_EQ(state()["station"], "hall");
    // One that somebody has put into its place is not taken away.
    std::filesystem::remove(folder_.file("shared"));
    folder_.write("shared", "mine");
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder_.file("shared")));
}

TEST_F(StationCommand, TouchesAReaderWhoseSettingsOrSheetsHaveChanged)
{
    const std::string key = R"(HKCU\Software\StationOfATest)";
    ASSERT_EQ(runCommand({"settings", "set", key, "ScannerType", "13"}).status, 0);
    const auto sheets = [&](const std::string& mark) { folder_.write("sheets.json", "[" + sheetWith(mark) + "]"); };
    sheets("5");
    RunningCommand station(
        {"station", file(R"({"name": "left", "model": 13, "simulate": {"unlimited": true, "count": 1},
                             "settings": "HKCU\\Software\\StationOfATest"},
                            {"name": "right", "model": 13, "simulate": {"unlimited": true, "sheets": "sheets.json"},
                             "set": {"SleepTime": 1, "Timeout": 600}}, )" +
                         simulated("other", 1))});
    ASSERT_TRUE(station.waitForError("left: reads."));
    ASSERT_TRUE(station.waitForError("right: has no more sheets"));
    ASSERT_TRUE(station.waitForError("other: has no more sheets"));
    ASSERT_EQ(runCommand({"settings", "set", key, "SomethingElse", "1"}).status, 0);
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("left: is stopped."));
    sheets("7");
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("right: is stopped."));
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(countOf(outcome.errors, "left: is stopped."), 2U);
    EXPECT_EQ(countOf(outcome.errors, "other: is stopped."), 1U);
}

/// The end of a line at which nobody answers.
class SilentLine {
public:
    SilentLine()
    {
        if (::openpty(&near_, &far_, name_.data(), nullptr, nullptr) != 0)
            throw std::runtime_error("There is no pseudo-terminal.");
        termios raw{};
        ::cfmakeraw(&raw);
        ::tcsetattr(far_, TCSANOW, &raw);
    }
    ~SilentLine()
    {
        ::close(near_);
        ::close(far_);
    }
    SilentLine(const SilentLine&) = delete;
    SilentLine& operator=(const SilentLine&) = delete;

    [[nodiscard]] std::string device() const { return name_.data(); }

    /// Waits until somebody sends something.
    [[nodiscard]] bool wait() const
    {
        char byte = 0;
        return ::read(near_, &byte, 1) == 1;
    }

private:
    int near_ = -1;
    int far_ = -1;
    std::array<char, 64> name_{};
};

TEST_F(StationCommand, AStartThatItGivesUpIsNoFailure)
{
    const SilentLine line;
    RunningCommand station({"station", file(R"({"name": "left", "model": 1, "set": {"Timeout": 600}, "device": ")" +
                                            line.device() + R"("})")});
    ASSERT_TRUE(line.wait());
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "kelreader: left: is stopped.\n");
}

TEST_F(StationCommand, KeepsAFailureThatIsNoReportOfTheReader)
{
    std::filesystem::create_directory(folder_.path() / "trace");
    RunningCommand station({"station", file(R"({"name": "left", "model": 13, "trace": "trace",
                                                "simulate": {"unlimited": true}})")});
    ASSERT_TRUE(station.waitForError("left: "));
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    std::vector<std::string> kept;
    StoredSheets(store_).read({.reader = "left"}, 0, [&](const Entry& entry) {
        kept.push_back(entry.report()->failure.description);
        return true;
    });
    ASSERT_EQ(kept.size(), 1U); // however often it was tried again
    EXPECT_THAT(kept[0], HasSubstr("trace"));
    EXPECT_THAT(outcome.errors, HasSubstr("left: " + kept[0]));
}

TEST_F(StationCommand, GoesOnAfterAJam)
{
    RunningCommand station({"station", file(R"({"name": "left", "batch": "monday", "model": 13,
        "simulate": {"unlimited": true, "count": 4, "faults": ["jam@sheet=2"]},
        "set": {"SleepTime": 1, "Timeout": 600}})")});
    ASSERT_TRUE(station.waitForError("left: Reader Fault: "));
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    EXPECT_EQ(state()["readers"][0]["failures"], 1);
    station.signal(SIGTERM);
    EXPECT_EQ(countOf(station.finish().errors, "left: reads."), 2U);
    // The sheet that jammed has gone past.
    EXPECT_THAT(kept("left"), testing::ElementsAre("1", "Reader Fault after 1", "2", "3"));
}

TEST_F(StationCommand, GoesOnWithAReaderThatIsConnectedAgain)
{
    const std::string device = folder_.file("reader");
    folder_.write("form.json", R"({"side1Rows": [63], "side1Cols": [48]})");
    const auto words = [&](const std::vector<std::string>& more) {
        std::vector<std::string> all{"simulate", "--model", "13", "--link", device, "--rate", "unlimited"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    };
    std::optional<RunningCommand> reader(words({"--count", "3", "--fault", "unplug@sheet=2"}));
    ASSERT_THAT(reader->readLine(), HasSubstr("ready"));
    RunningCommand station({"station", file(R"({"name": "left", "batch": "monday", "model": 13, "form": "form.json",
        "set": {"SleepTime": 1, "Timeout": 600}, "device": ")" +
                                            device + R"("})")});
    ASSERT_TRUE(station.waitForError("has hung up: the reader was disconnected or switched off."));
    ASSERT_TRUE(station.waitForError("left: Invalid port number"));
    reader.emplace(words({"--count", "2"}));
    ASSERT_TRUE(waitUntil([&] { return numbers("left").size() == 3; }));
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2, 3));
}

TEST_F(StationCommand, RejectsBlankSheetsAndCountsThem)
{
    folder_.write("sheets.json", "[" + sheetWith("5") + ", " + sheetWith("0") + ", " + sheetWith("6") + "]");
    RunningCommand station({"station", file(R"({"name": "left", "batch": "monday", "model": 13, "rejectBlank": true,
        "print1": "{sheet}", "simulate": {"unlimited": true, "sheets": "sheets.json"},
        "set": {"SleepTime": 1, "Timeout": 600, "Rejecter": true, "Printer.Enabled": true}})")});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    EXPECT_EQ(state()["readers"][0]["rejected"], 1);
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    EXPECT_THAT(kept("left"), testing::ElementsAre("1 printed", "2 rejected", "3 printed"));
}

TEST_F(StationCommand, HasMoreReadersThanAUsualProcessHasDescriptors)
{
    std::string readers = simulated("r0", 0);
    for (int i = 1; i < 30; ++i)
        readers += "," + simulated("r" + std::to_string(i), 0);
    RunningCommand station({"-c", R"(ulimit -S -n 48 && exec "$0" station "$1")", readerProgram(), file(readers)},
                           "/bin/sh");
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(station.waitForError("r" + std::to_string(i) + ": has no more sheets"));
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
    EXPECT_EQ(countOf(wrong.errors, "kelreader: "), 3U);
    EXPECT_FALSE(std::filesystem::exists(store_));
    const CommandOutcome usual = runCommand({"station", "--check"});
    EXPECT_THAT(usual.errors + usual.output, HasSubstr("/etc/kelreader/station.json: "));
}

} // namespace
} // namespace kel::test
