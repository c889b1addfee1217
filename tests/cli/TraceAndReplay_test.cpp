// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "host/Batch.h"
#include "host/TraceHead.h"
#include "recording/TracingCarrier.h"
#include "recording/TranscriptDevice.h"
#include "simulators/platform/ReplayPlatform.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using Words = std::vector<std::string>;

/// A session's events as lines; the number of a failing statement is that of the control in use.
std::vector<std::string> hold(clsKELReader& reader, const host::Request& request,
                              const std::function<bool()>& stopWanted = {})
{
    std::vector<std::string> lines;
    JsonLines sink([&](const std::string& line) { lines.push_back(withoutStatements(line)); });
    static_cast<void>(host::runScan(reader, request, sink, stopWanted));
    return lines;
}

struct Replayed {
    std::vector<std::string> lines;
    std::vector<std::string> differences;
    std::string unsent;
};

Replayed replay(const std::string& text)
{
    const Transcript transcript = parseTranscript(text);
    const host::Request request = host::requestOfTranscript(transcript, text, "trace");
    SimulatedPlatform machine;
    const auto carrier = std::make_shared<ReplayCarrier>(transcript);
    ReplayLibrary library(transcript);
    ReplayPlatform times(machine, *carrier, library);
    const PlatformScope scope(times);
    clsKELReader reader;
    reader.fComm(Reference<Carrier>(carrier));
    host::prepareReader(reader, request);
    Replayed replayed;
    replayed.lines = hold(reader, request, [&] { return carrier->stopped(); });
    replayed.differences = carrier->differences();
    replayed.unsent = carrier->unsent();
    return replayed;
}

/// Every session that the tests know byte for byte.
class TraceAndReplay : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(TraceAndReplay, GivesTheSameSession)
{
    const std::string text = fileText(GetParam());
    const Transcript transcript = parseTranscript(text);
    const host::Request request = host::requestOfTranscript(transcript, text, "session");

    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    TranscriptDevice device(transcript);
    machine.attach(1, device);
    clsKELReader reader;
    host::prepareReader(reader, request);
    TraceLog::Head head = host::traceHead(request, reader);
    if (const auto form = transcript.value("form"))
        head.emplace_back("form", *form);
    if (const auto key = transcript.value("answer-key"))
        head.emplace_back("answer-key", *key);
    std::string trace;
    reader.fComm(makeReference<TracingCarrier>(reader.fComm(), head, [&](const std::string& line) { trace += line; }));
    const std::vector<std::string> lines = hold(reader, request);
    ASSERT_THAT(device.differences(), IsEmpty());

    const Replayed replayed = replay(trace);
    EXPECT_EQ(replayed.lines, lines) << trace;
    EXPECT_THAT(replayed.differences, IsEmpty()) << trace;
    EXPECT_EQ(replayed.unsent, "") << trace;
}

std::vector<std::filesystem::path> sessions()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(testData() + "/transcripts")) {
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string nameOf(const testing::TestParamInfo<std::filesystem::path>& info)
{
    std::string name = info.param.parent_path().filename().string() + "_" + info.param.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Sessions, TraceAndReplay, testing::ValuesIn(sessions()), nameOf);

/// A scan over a pseudo-terminal in real time, traced.
CommandOutcome tracedScan(const TextFile& trace, const Words& more)
{
    Words words = simulatedScan({"--trace", trace.path()});
    words.insert(words.end(), more.begin(), more.end());
    return runCommand(words);
}

TEST(ReplayCommand, HoldsATracedSessionAgain)
{
    const TextFile trace("");
    const TextFile sheets(R"([{"side1":[[1,0,0],[0,1,0]]},{"side1":[[0],[0]]}])");
    const CommandOutcome scan = tracedScan(trace, {"--sheets", sheets.path(), "--max-sheets", "2", "--reject-blank"});
    ASSERT_EQ(scan.status, 0) << scan.errors;
    EXPECT_THAT(trace.text(), StartsWith("# model: 22\n# form: "));
    EXPECT_THAT(trace.text(), HasSubstr("\n# set: Timeout=600\n"));
    EXPECT_THAT(trace.text(), HasSubstr("# line: 9600,E,7,1\n"));
    const CommandOutcome replay = runCommand({"replay", trace.path()});
    EXPECT_EQ(replay.output, scan.output);
    EXPECT_EQ(replay.errors, "");
    EXPECT_EQ(replay.status, 0);
}

TEST(ReplayCommand, HangsUpWhereTheReaderDid)
{
    const TextFile trace("");
    const CommandOutcome scan =
        tracedScan(trace, {"--seed", "1", "--count", "3", "--fault", "unplug@sheet=2", "--max-sheets", "3"});
    ASSERT_EQ(scan.status, 1) << scan.errors;
    EXPECT_THAT(trace.text(), HasSubstr("\n! unplug # Error reading comm device: Port 1 (/dev/pts/"));
    const CommandOutcome replay = runCommand({"replay", trace.path()});
    EXPECT_EQ(withoutStatements(replay.output), withoutStatements(scan.output));
    EXPECT_EQ(replay.status, 1);
}

TEST(ReplayCommand, IsRefusedAsTheLineWas)
{
    const TextFile trace("");
    const CommandOutcome scan =
        runCommand({"scan", "--model", "24", "--device", "/dev/not-there", "--trace", trace.path()});
    EXPECT_THAT(trace.text(), HasSubstr("\n# refused: PortOpen 8002 Invalid port number: "));
    const CommandOutcome replay = runCommand({"replay", trace.path()});
    EXPECT_EQ(withoutStatements(replay.output), withoutStatements(scan.output));
    EXPECT_EQ(replay.status, 1);
}

TEST(ReplayCommand, WaitsInNoTime)
{
    const TextFile trace("# model: 13\n# set: Timeout=30000\n# max-sheets: 1\n> 1B \"SRST\" 0D\n> 1B \"SRST\" 0D\n");
    // Two waits of more than eight hours: a replay that took them would be called stuck.
    const CommandOutcome replay = runCommand({"replay", trace.path()});
    EXPECT_THAT(replay.output, HasSubstr("\"event\":\"failure\""));
    EXPECT_EQ(replay.status, 1);
}

TEST(ReplayCommand, TellsWhereTheSessionDiffers)
{
    const TextFile trace("# model: 13\n# max-sheets: 1\n> 1B \"SRST\" 0D\n< 0D\n> \"X\"\n");
    const CommandOutcome replay = runCommand({"replay", trace.path()});
    EXPECT_THAT(replay.errors, HasSubstr("Line 5: the host sent 1B"));
    EXPECT_EQ(replay.status, 1);
}

TEST(ReplayCommand, RefusesADamagedTranscript)
{
    const TextFile damaged("# model: 13\n> 1B\n< 0\n");
    EXPECT_EQ(runCommand({"replay", damaged.path()}).errors,
              "kelreader: " + damaged.path() +
                  ", line 3: \"0\" is neither two hexadecimal digits nor a text in quotes.\n");
    EXPECT_EQ(runCommand({"replay", damaged.path()}).status, 2);

    const TextFile noNumber("# model: 13\n# max-sheets: many\n> 1B\n");
    EXPECT_EQ(runCommand({"replay", noNumber.path()}).errors,
              "kelreader: " + noNumber.path() + ", line 2: 'many' is not a number in range.\n");

    const TextFile noModel("> 1B\n");
    EXPECT_EQ(runCommand({"replay", noModel.path()}).status, 2);
}

TEST(ReplayCommand, CitesATranscriptOnOneLine)
{
    using namespace std::string_literals;
    const TextFile damaged("# model: 13\n# max-sheets: 1\0\x1B[2J\n> 1B\n"s);
    EXPECT_EQ(runCommand({"replay", damaged.path()}).errors,
              "kelreader: " + damaged.path() + ", line 2: '1??[2J' is not a number in range.\n");
}

} // namespace
} // namespace kel::test
