// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "host/Batch.h"
#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "recording/TranscriptDevice.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "strings/VBLMRTSModule.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/LongRun.h"
#include "tests/support/WatchedDevice.h"
#include "types/Text.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

// Sessions byte for byte. Every file below this folder is one: its head says what the host is to do (model, line, form,
// answer-key, set, port, max-sheets, reject-sheets, reject-blank, print1 to print3, print-distance) and what it then
// hears
// ("expect", a line of JSON each, in order; {354} stands for the text of that number), its lines what goes over the
// wire. Large arrays are written as @ROWSxCOLUMNS@row,column=value;...@ with 0 everywhere else. Each session runs under
// the virtual clock, and over a pseudo-terminal a few of each family, or all in a long run. A run-time failure is
// expected with its standard text alone and without the number of its statement, which moves with the code.

namespace kel::test {
namespace {

std::vector<std::filesystem::path> transcriptFiles()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(testData() + "/transcripts")) {
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Those that are held over a real line. All in a long run, on a machine that keeps time; otherwise some of a Scanmark,
/// whose host waits for each reply. The other dialogues have pauses by the end of which a reply has to be there.
std::vector<std::filesystem::path> sampledTranscriptFiles()
{
    constexpr std::size_t kSample = 16;
    std::vector<std::filesystem::path> all = transcriptFiles();
    if (longRun())
        return all;
    std::erase_if(all, [](const auto& file) { return file.parent_path().filename() != "scantron"; });
    std::vector<std::filesystem::path> files;
    for (std::size_t place = 0; place < kSample; ++place)
        files.push_back(all[place * all.size() / kSample]);
    return files;
}

Transcript readTranscript(const std::filesystem::path& file)
{
    std::ifstream input(file);
    std::stringstream text;
    text << input.rdbuf();
    return parseTranscript(text.str());
}

/// A text with {number} replaced by the text of that number, as it stands within JSON.
std::string withTexts(std::string line)
{
    for (std::size_t at = line.find('{', 1); at != std::string::npos; at = line.find('{', at + 1)) {
        const std::size_t end = line.find('}', at);
        const std::string number = end == std::string::npos ? "" : line.substr(at + 1, end - at - 1);
        if (number.empty() || number.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const std::string text = nlohmann::json(VBLM_RTString(std::stoi(number))).dump();
        line.replace(at, end - at + 1, text.substr(1, text.size() - 2));
    }
    return line;
}

/// A line with each @ROWSxCOLUMNS@row,column=value;...@ written out as the array that it stands for.
std::string withArrays(std::string line)
{
    for (std::size_t at = line.find('@'); at != std::string::npos; at = line.find('@', at)) {
        const std::size_t middle = line.find('@', at + 1);
        const std::size_t end = line.find('@', middle + 1);
        const auto size = split(line.substr(at + 1, middle - at - 1), 'x');
        nlohmann::json array(std::stoul(size.at(0)), nlohmann::json(std::stoul(size.at(1)), 0));
        for (const std::string& cell : split(line.substr(middle + 1, end - middle - 1), ';')) {
            const auto place = split(cell.substr(0, cell.find('=')), ',');
            array.at(std::stoul(place.at(0)) - 1).at(std::stoul(place.at(1)) - 1) =
                std::stoi(cell.substr(cell.find('=') + 1));
        }
        line.replace(at, end - at + 1, array.dump());
    }
    return line;
}

host::Request requestOf(const Transcript& transcript)
{
    host::Request request;
    request.model = static_cast<kelReaderType>(std::stoi(transcript.value("model").value()));
    request.port = Int16{1};
    request.assignments = transcript.values("set");
    if (const auto form = transcript.value("form"))
        request.form = host::parseForm(*form, "form");
    if (const auto key = transcript.value("answer-key"))
        request.answerKey = host::parseAnswerKey(*key, "answer-key");
    if (const auto sheets = transcript.value("max-sheets"))
        request.maxSheets = std::stoi(*sheets);
    if (const auto sheets = transcript.value("reject-sheets")) {
        for (const std::string& sheet : split(*sheets, ','))
            request.rejectSheets.insert(std::stoi(sheet));
    }
    request.rejectBlank = transcript.value("reject-blank").has_value();
    request.print.print1 = transcript.value("print1");
    request.print.print2 = transcript.value("print2");
    request.print.print3 = transcript.value("print3");
    if (const auto distance = transcript.value("print-distance"))
        request.print.distance = static_cast<Int16>(std::stoi(*distance));
    return request;
}

std::vector<std::string> expectedLines(const Transcript& transcript)
{
    std::vector<std::string> lines = transcript.values("expect");
    std::transform(lines.begin(), lines.end(), lines.begin(),
                   [](const auto& line) { return withTexts(withArrays(line)); });
    return lines;
}

/// A line without the number of a failing statement, and without what the system adds to the failure's text.
std::string withoutStatement(const std::string& line)
{
    if (line.find("\"line\":") == std::string::npos)
        return line;
    auto event = nlohmann::ordered_json::parse(line);
    if (event.value("line", 0) == 0)
        return line;
    const std::string statement = VBLM_RTString(TextNumber(244)) + std::to_string(event["line"].get<int>());
    event["source"] = replaceAll(event["source"].get<std::string>(), statement, "");
    event["line"] = 0;
    const std::string description = event["description"].get<std::string>();
    event["description"] = description.substr(0, description.find(": "));
    return event.dump();
}

std::vector<std::string> scan(const Transcript& transcript)
{
    std::vector<std::string> lines;
    JsonLines sink(
        [&](const std::string& line) { lines.push_back(withoutStatement(line.substr(0, line.size() - 1))); });
    clsKELReader reader;
    const host::Request request = requestOf(transcript);
    host::prepareReader(reader, request);
    static_cast<void>(host::runScan(reader, request, sink));
    return lines;
}

void expectPlayed(const TranscriptDevice& device)
{
    EXPECT_THAT(device.differences(), testing::IsEmpty());
    EXPECT_TRUE(device.finished()) << "still to come: " << device.next();
}

class TranscriptTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(TranscriptTest, UnderTheVirtualClock)
{
    const Transcript transcript = readTranscript(GetParam());
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    TranscriptDevice device(transcript);
    machine.attach(1, device);
    EXPECT_EQ(scan(transcript), expectedLines(transcript));
    expectPlayed(device);
}

class TranscriptOverAPseudoTerminal : public TranscriptTest {};

TEST_P(TranscriptOverAPseudoTerminal, SaysTheSame)
{
    tally("transcripts over a pseudo-terminal", 1);
    Transcript transcript = readTranscript(GetParam());
    // A pseudo-terminal holds neither 7 bits nor parity.
    std::erase_if(transcript.head, [](const auto& entry) { return entry.first == "line"; });
    const std::unique_ptr<Platform> machine = makePosixPlatform();
    const PlatformScope scope(*machine);
    TranscriptDevice device(transcript);
    WatchedDevice watched(device);
    PtyDeviceHost pty(watched);
    const PortOverride line(1, pty.deviceFile());
    pty.start();
    const std::vector<std::string> lines = scan(transcript);
    watched.waitForEnd();
    pty.stop();
    pty.join();
    EXPECT_EQ(lines, expectedLines(transcript));
    expectPlayed(device);
}

std::string nameOf(const testing::TestParamInfo<std::filesystem::path>& info)
{
    std::string name = info.param.parent_path().filename().string() + "_" + info.param.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Sessions, TranscriptTest, testing::ValuesIn(transcriptFiles()), nameOf);
INSTANTIATE_TEST_SUITE_P(Sessions, TranscriptOverAPseudoTerminal, testing::ValuesIn(sampledTranscriptFiles()), nameOf);

} // namespace
} // namespace kel::test
