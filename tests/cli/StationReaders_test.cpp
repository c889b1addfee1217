// SPDX-License-Identifier: MIT
#include "tests/cli/StationCommandTest.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <map>

namespace kel::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// A station with a reader that grades its sheets: it gets the key, reads one sheet, and waits for most of an hour.
class AStationWithAnAnswerKey : public StationCommand {
protected:
    AStationWithAnAnswerKey()
    {
        folder_.write("form.json", R"({"side1Rows": [1], "side1Cols": [2]})");
        folder_.write("sheets.json", R"([{"side1": [[1, 1]], "fields": {"Student ID": "77"}}])");
    }

    void key(const std::string& answers) const
    {
        folder_.write("key.json", R"({"formIds": ["0001"], "questionsOnPage": [1], "questions": [
            {"name": "Question 1", "choices": ["A", "B"], "correctAnswers": )" +
                                      answers + "}]}");
    }

    std::string withReader(const std::string& more = {}) const
    {
        return file(R"({"name": "left", "batch": "monday", "model": 39, "form": "form.json", "answerKey": "key.json",
            "trace": "trace", "set": {"SleepTime": 1, "Timeout": 600}, "simulate": {"unlimited": true,
            "sheets": "sheets.json", "settings": ["feed-ms=3600000", "first-ms=0", "key-slack-ms=3600000"])" +
                    more + "}}");
    }

    [[nodiscard]] std::string trace() const { return fileText(folder_.file("trace")); }
};

TEST_F(AStationWithAnAnswerKey, LoadsItAndTheNextOneAfterAReload)
{
    key(R"(["A"])");
    RunningCommand station({"station", withReader()});
    ASSERT_TRUE(station.waitForError("left: reads."));
    ASSERT_TRUE(waitUntil([&] { return numbers("left") == std::vector<Int32>{1}; }));
    EXPECT_THAT(trace(), HasSubstr("> 01 \"Q\"\n"));
    StoredSheets(store_).read({.reader = "left"}, 0, [&](const Entry& entry) {
        EXPECT_TRUE(entry.sheet()->sheet.record.has_value()); // what the reader has graded
        return true;
    });
    key(R"(["B"])");
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("left: is stopped."));
    ASSERT_TRUE(waitUntil([&] { return numbers("left") == std::vector<Int32>{1, 2}; }));
    EXPECT_THAT(trace(), AllOf(HasSubstr("> 02 \"Q\"\n"), Not(HasSubstr("> 01 \"Q\"\n"))));
    key(R"(["C"])");
    station.signal(SIGHUP);
    ASSERT_TRUE(station.waitForError("readers[0].answerKey: "));
    ASSERT_TRUE(station.waitForError("The station goes on unchanged"));
    EXPECT_EQ(state()["readers"][0]["state"], "reading");
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("has the answer \"C\", which is not among the choices A and B."));
    EXPECT_EQ(countOf(outcome.errors, "left: is stopped."), 2U);
    EXPECT_THAT(kept("left"), ElementsAre("1", "2"));
}

TEST_F(AStationWithAnAnswerKey, ReadsOnlyWhenTheReaderHasTakenIt)
{
    key(R"(["A"])");
    // Its "OK" to the first command of the key is damaged on its way, once.
    RunningCommand station({"station", withReader(R"(, "faults": ["garble=1@byte=5"])")});
    ASSERT_TRUE(station.waitForError("left: Reader Not Ready: The reader was not made ready: "));
    ASSERT_TRUE(station.waitForError("left: reads."));
    ASSERT_TRUE(waitUntil([&] { return numbers("left").size() == 1; }));
    const Json left = state()["readers"][0];
    EXPECT_EQ(left["failures"], 1);
    EXPECT_THAT(left["problem"].get<std::string>(), HasSubstr("(186, basApperson."));
    EXPECT_THAT(left["advice"].get<std::string>(), HasSubstr("If an answer key is sent, check that"));
    station.signal(SIGTERM);
    EXPECT_THAT(station.finish().errors, HasSubstr(left["advice"].get<std::string>()));
    EXPECT_THAT(kept("left"), ElementsAre("Reader Not Ready after 0", "1"));
}

/// A reader that reads sheet after sheet, on a line of its own, and can be kept from answering.
class AStationWithAReaderOnALine : public StationCommand {
protected:
    AStationWithAReaderOnALine()
        : reader_({"simulate", "--model", "13", "--form", form_, "--link", device_, "--count", "100000", "--rate",
                   "unlimited", "--setting", "feed-ms=50"})
    {
        EXPECT_THAT(reader_.readLine(), HasSubstr("ready"));
    }

    [[nodiscard]] Json left() const { return state()["readers"][0]; }

    const std::string form_ = folder_.write("form.json", R"({"side1Rows": [2], "side1Cols": [48]})");
    const std::string device_ = folder_.file("reader");
    RunningCommand reader_;
};

// On a busy machine a reply may be late enough to be a failure, too: what is looked at is what cannot come of that.
TEST_F(AStationWithAReaderOnALine, GoesOnWhenItHasFallenSilentAndSpeaksAgain)
{
    RunningCommand station({"station", file(R"({"name": "left", "model": 13, "form": "form.json",
        "set": {"SleepTime": 1, "Timeout": 1, "Feeder": false}, "device": ")" +
                                            device_ + R"("})")});
    ASSERT_TRUE(station.waitForError("left: reads."));
    ASSERT_TRUE(waitUntil([&] { return numbers("left").size() >= 2; }));
    ::kill(reader_.process(), SIGSTOP);
    const auto isSilent = [&] {
        const Json now = left();
        return now["state"] == "failed" && now["problem"].get<std::string>().starts_with("Reader Not Answering: ");
    };
    ASSERT_TRUE(waitUntil(isSilent));
    const Json silent = left();
    EXPECT_THAT(silent["advice"].get<std::string>(), Not(IsEmpty()));
    EXPECT_THAT(kept("left"), Contains(StartsWith("Reader Not Answering after ")));
    // Each attempt is a batch. Two later, or more, it is still the same failure.
    ASSERT_TRUE(waitUntil([&, seen = 0, batch = silent["batch"]]() mutable {
        const Json now = left()["batch"];
        seen += std::exchange(batch, now) != now ? 1 : 0;
        return seen > 2;
    }));
    EXPECT_EQ(left()["failures"], silent["failures"]);
    EXPECT_EQ(left()["since"], silent["since"]);
    const std::size_t before = numbers("left").size();
    ::kill(reader_.process(), SIGCONT);
    ASSERT_TRUE(waitUntil([&] { return numbers("left").size() > before + 1 && left()["state"] == "reading"; }));
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors,
                HasSubstr("left: " + silent["problem"].get<std::string>() + " " + silent["advice"].get<std::string>()));
    EXPECT_GE(countOf(outcome.errors, "left: reads."), 2U);
    std::map<std::string, Int32> last;
    StoredSheets(store_).read({.reader = "left", .failures = false}, 0, [&](const Entry& entry) {
        EXPECT_EQ(entry.sheet()->sheet.number, ++last[entry.origin.batch]);
        return true;
    });
}

} // namespace
} // namespace kel::test
