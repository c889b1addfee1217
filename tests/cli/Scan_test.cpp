// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/Patience.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <regex>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using Words = std::vector<std::string>;

std::string sheetLine(Int32 number, const std::vector<std::pair<Int32, Int32>>& marks, bool rejected = false)
{
    host::Sheet sheet;
    sheet.number = number;
    sheet.side1 = MarkArray(128, 12);
    for (const auto& [row, column] : marks)
        sheet.side1(row, column) = 2;
    sheet.side1TimingMarks = 2;
    sheet.barcodes = TextArray(0, 0);
    sheet.rejected = rejected;
    return jsonLine(sheet);
}

constexpr const char* kTwoSheets = R"([{"side1":[[1,0,0],[0,1,0]]},{"side1":[[0],[0]]}])";

/// Numbers of lines and of pseudo-terminals are not the same in each run.
std::string withoutNumbers(const std::string& text)
{
    static const std::regex device("/dev/pts/[0-9]+");
    return withoutStatements(std::regex_replace(text, device, "/dev/pts/N"));
}

TEST(ScanCommand, JsonTellsSheetsAndEnd)
{
    const TextFile sheets(kTwoSheets);
    const CommandOutcome outcome =
        runCommand(simulatedScan({"--sheets", sheets.path(), "--max-sheets", "2", "--reject-blank"}));
    EXPECT_THAT(outcome.lines(),
                ElementsAre(sheetLine(1, {{1, 1}, {2, 2}}), sheetLine(2, {}, true),
                            R"({"event":"end","started":true,"sheets":2,"cancelScan":true,"result":true})"));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ScanCommand, TableShowsTheMarks)
{
    const TextFile sheets(kTwoSheets);
    const CommandOutcome outcome = runCommand(
        simulatedScan({"--sheets", sheets.path(), "--max-sheets", "2", "--reject-sheets", "2", "--format", "table"}));
    EXPECT_EQ(outcome.output, "Sheet 1\n"
                              "  Side 1, 2 timing marks\n"
                              "  1  2.... ..... ..\n"
                              "  2  .2... ..... ..\n"
                              "     rows 3 to 128 are blank\n"
                              "\n"
                              "Sheet 2   REJECTED\n"
                              "  Side 1, 2 timing marks\n"
                              "  1  ..... ..... ..\n"
                              "  2  ..... ..... ..\n"
                              "     rows 3 to 128 are blank\n"
                              "\n"
                              "2 sheets read.\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ScanCommand, CsvGoesIntoAFile)
{
    const TextFile sheets(kTwoSheets);
    const TextFile out("what was there before");
    const CommandOutcome outcome = runCommand(
        simulatedScan({"--sheets", sheets.path(), "--max-sheets", "2", "--format", "csv", "--out", out.path()}));
    EXPECT_EQ(out.text(), "sheet,rejected,printed,side1TimingMarks,side2TimingMarks,barcodes,side1,side2,record\n"
                          "1,false,false,2,-1,,1:1=2 2:2=2,,\n"
                          "2,false,false,2,-1,,,,\n");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ScanCommand, FormAndPropertiesReachTheReader)
{
    const TextFile form(R"({"side1Rows":[2],"side1Cols":[3]})");
    const CommandOutcome outcome =
        runCommand(simulatedScan({"--seed", "7", "--count", "1", "--max-sheets", "1", "--form", form.path(), "--set",
                                  "RecognitionThreshold=199"}));
    ASSERT_EQ(outcome.lines().size(), 2U) << outcome.errors;
    const Json sheet = Json::parse(outcome.lines().front());
    EXPECT_EQ(sheet["side1TimingMarks"], 2);
    for (const Json& row : sheet["side1"]) {
        for (const Json& mark : row)
            EXPECT_TRUE(mark == 0 || mark == 200) << mark;
    }
    EXPECT_EQ(outcome.status, 0);
}

TEST(ScanCommand, ReaderThatHangsUpInTheMiddleOfAPageIsReported)
{
    const TextFile sheets(kTwoSheets);
    const CommandOutcome outcome =
        runCommand(simulatedScan({"--sheets", sheets.path(), "--fault", "unplug@sheet=2,byte=3"}));
    const std::string hungUp =
        "Error reading comm device: Port 1 (/dev/pts/N) has hung up: the reader was disconnected "
        "or switched off. Connect it and start again.";
    EXPECT_EQ(withoutNumbers(outcome.output),
              sheetLine(1, {{1, 1}, {2, 2}}) +
                  "\n"
                  R"({"event":"failure","line":N,"number":8020,"type":0,"description":")" +
                  hungUp +
                  R"(","source":"basChatsworth.ReadPageCT, line N","title":""})"
                  "\n"
                  R"({"event":"end","started":true,"sheets":1,"cancelScan":true,"result":true})"
                  "\n");
    EXPECT_EQ(withoutNumbers(outcome.errors), "kelreader: " + hungUp + " (8020, basChatsworth.ReadPageCT, line N)\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(ScanCommand, FullDiskEndsTheScanWithASentence)
{
    const CommandOutcome outcome = runCommand(simulatedScan({"--count", "3", "--out", "/dev/full"}));
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "kelreader: /dev/full cannot be written: no space is left. Free some, or name another file "
              "with --out.\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(ScanCommand, FileThatCannotBeMadeEndsItBeforeItBegins)
{
    const CommandOutcome outcome = runCommand(simulatedScan({"--out", "/nonexistent/out.json"}));
    EXPECT_EQ(outcome.errors, "kelreader: /nonexistent/out.json cannot be written: No such file or directory.\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(ScanCommand, PortThatIsAbsentIsReportedWithWhatToTry)
{
    const CommandOutcome outcome = runCommand({"scan", "--model", "24", "--device", "/dev/no-such-reader"});
    ASSERT_EQ(outcome.lines().size(), 3U);
    EXPECT_THAT(outcome.lines().front(), StartsWith(R"({"event":"failure",)"));
    EXPECT_THAT(
        outcome.lines().front(),
        HasSubstr(R"("number":8002,"type":0,"description":"Invalid port number: Port 1 (/dev/no-such-reader) is )"
                  "not there: No such file or directory. Connect the reader and switch it on"));
    EXPECT_EQ(outcome.lines().back(),
              R"({"event":"end","started":false,"sheets":0,"cancelScan":false,"result":false})");
    EXPECT_THAT(outcome.errors,
                StartsWith("kelreader: Invalid port number: Port 1 (/dev/no-such-reader) is not there"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(ScanCommand, PortWithoutADeviceAndPortThatIsNoneAreReported)
{
    const CommandOutcome unmapped = runCommand({"scan", "--model", "24", "--port", "16"});
    EXPECT_THAT(unmapped.errors, StartsWith("kelreader: Invalid port number: Port 16 has no device. Assign it to one: "
                                            "kelreader ports set 16 DEVICE"));
    EXPECT_EQ(unmapped.status, 1);
    const CommandOutcome outside = runCommand({"scan", "--model", "24", "--port", "0"});
    EXPECT_THAT(outside.errors,
                StartsWith("kelreader: Port Not Allowed: Port 0 is not allowed. Choose a port from 1 to "
                           "16 in the reader settings, then start again. (8002, basRead.ReaderInit)"));
    EXPECT_EQ(outside.status, 1);
}

TEST(ScanCommand, FileThatIsNoSerialDeviceIsReported)
{
    const CommandOutcome outcome = runCommand({"scan", "--model", "24", "--device", "/dev/null"});
    EXPECT_THAT(outcome.errors, HasSubstr("Port 1 (/dev/null) is not a serial device"));
    EXPECT_EQ(outcome.status, 1);
}

TEST(ScanCommand, AnAnswerKeyGoesIntoTheReader)
{
    const TextFile form(R"({"side1Rows":[1],"side1Cols":[2]})");
    const TextFile sheets(R"([{"side1":[[1,1]],"fields":{"Student ID":"77"}}])");
    const TextFile key(R"({"formIds":["0001"],"questionsOnPage":[1],"questions":[
        {"name":"Question 1","choices":["A","B"],"correctAnswers":["A"]}]})");
    // The reader looks at the pauses within a key, and sends its sheets when it likes: the next one comes too late.
    const TextFile trace("");
    const CommandOutcome outcome =
        runCommand(simulatedScan({"--setting", "feed-ms=3600000", "--setting", "first-ms=0", "--setting",
                                  "key-slack-ms=3600000", "--form", form.path(), "--sheets", sheets.path(),
                                  "--answer-key", key.path(), "--max-sheets", "1", "--trace", trace.path()},
                                 "39"));
    EXPECT_THAT(outcome.lines(),
                ElementsAre(HasSubstr(R"("Error Code":"   ","1":"A\tB"})"),
                            R"({"event":"end","started":true,"sheets":1,"cancelScan":true,"result":true})"));
    EXPECT_THAT(trace.text(), HasSubstr("> 01 \"Q\"\n"));
    EXPECT_EQ(outcome.errors, ""); // the simulated reader has found no fault with the key
}

TEST(ScanCommand, DeviceThatIsInUseIsReportedWithItsUser)
{
    Pty line;
    RunningCommand first({"scan", "--model", "13", "--device", line.name(), "--set", "Timeout=600"});
    // The first one speaks as soon as it has the line, and waits for the reply.
    ASSERT_TRUE(waitUntil([&] { return !line.read().empty(); }));
    const CommandOutcome second = runCommand({"scan", "--model", "13", "--device", line.name()});
    EXPECT_THAT(second.errors, HasSubstr("is in use by process "));
    EXPECT_THAT(second.errors, HasSubstr(" (kelreader). Close that program."));
    EXPECT_EQ(second.status, 1);
    first.signal(SIGINT);
    EXPECT_EQ(first.finish().status, 130);
}

TEST(ScanCommand, CtrlCStopsTheBatchAndTellsItsEnd)
{
    RunningCommand scan(simulatedScan({"--count", "1"}));
    EXPECT_THAT(scan.readLine(), StartsWith(R"({"event":"sheet","sheet":1,)"));
    scan.signal(SIGINT);
    const CommandOutcome outcome = scan.finish();
    EXPECT_EQ(outcome.output, R"({"event":"end","started":true,"sheets":1,"cancelScan":true,"result":true})"
                              "\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 130);
}

TEST(ScanCommand, SecondCtrlCEndsItAtOnce)
{
    // While it pauses for most of an hour the first one is not heard.
    Pty line;
    RunningCommand scan({"scan", "--model", "24", "--device", line.name(), "--set", "SleepTime=600000"});
    ASSERT_TRUE(waitUntil([&] { return !line.read().empty(); }));
    scan.signal(SIGINT);
    scan.signal(SIGINT);
    const CommandOutcome outcome = scan.finish();
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 130);
}

TEST(ScanCommand, TerminalThatIsGoneStopsTheBatchInOrder)
{
    RunningCommand scan(simulatedScan({"--count", "1"}));
    EXPECT_THAT(scan.readLine(), StartsWith(R"({"event":"sheet","sheet":1,)"));
    scan.signal(SIGHUP);
    const CommandOutcome outcome = scan.finish();
    EXPECT_THAT(outcome.output, StartsWith(R"({"event":"end",)"));
    EXPECT_EQ(outcome.status, 130);
}

TEST(ScanCommand, ClosedStandardStreamsAreNotTheReadersLine)
{
    // A file that is opened next gets the number of the stream that is closed.
    Pty line;
    const std::string scan =
        "exec '" + readerProgram() + "' scan --model 13 --set Timeout=1 --device '" + line.name() + "' ";
    for (const char* closed : {">&- 2>&-", "<&- >&- 2>&-"}) {
        RunningCommand command({"-c", scan + closed}, "/bin/sh");
        const CommandOutcome outcome = command.finish();
        EXPECT_EQ(outcome.status, 1);
        // All that the reader gets is the reset at the start and at the end; it does not answer.
        EXPECT_EQ(line.read(), "\x1BSRST\r\x1BSRST\r") << closed;
    }
}

TEST(ScanCommand, TextsOfALineAreBytes)
{
    const TextFile sheets(R"([{"side1":[],"barcodes":["Ä\u0081Ç4567890"]}])");
    const CommandOutcome read =
        runCommand(simulatedScan({"--sheets", sheets.path(), "--max-sheets", "1", "--format", "csv"}, "18"));
    EXPECT_EQ(read.errors, "");
    // These two bytes would be one character of UTF-8.
    EXPECT_THAT(read.output, HasSubstr("Ä\xC2\x81Ç"));

    const CommandOutcome printed = runCommand({"scan", "--model", "24", "--simulate", "--print2", "5 €"});
    EXPECT_EQ(printed.errors, "kelreader: '5 €' cannot be printed: a reader prints only characters of Latin-1.\n");
    EXPECT_EQ(printed.status, 2);
}

TEST(ScanCommand, AnswersAreNoBlankSheet)
{
    const TextFile sheets(R"([{"side1":[[0,0,1,0,0]]},{"side1":[]}])");
    const CommandOutcome read = runCommand(
        simulatedScan({"--sheets", sheets.path(), "--max-sheets", "2", "--reject-blank", "--format", "csv"}, "39"));
    EXPECT_EQ(read.errors, "");
    ASSERT_EQ(read.lines().size(), 3U);
    EXPECT_THAT(read.lines()[1], StartsWith("1,false,"));
    EXPECT_THAT(read.lines()[2], StartsWith("2,true,"));
}

TEST(ScanCommand, ModelThatIsNoneIsRefusedQuietlyWithATraceToo)
{
    const TextFile trace("");
    const CommandOutcome outcome = runCommand(
        {"scan", "--model", "13", "--device", "/dev/null", "--set", "ReaderType=99", "--trace", trace.path()});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, StartsWith(R"({"event":"end","started":false,)"));
    EXPECT_EQ(outcome.status, 1);
}

struct WrongUse {
    const char* name;
    Words words;
    const char* sentence;
};

class ScanUsage : public testing::TestWithParam<WrongUse> {};

TEST_P(ScanUsage, IsRefusedWithOneSentence)
{
    Words words = {"scan"};
    words.insert(words.end(), GetParam().words.begin(), GetParam().words.end());
    const CommandOutcome outcome = runCommand(words);
    EXPECT_EQ(outcome.errors, std::string("kelreader: ") + GetParam().sentence + "\n");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Words, ScanUsage,
    testing::Values(
        WrongUse{"NoModel", {"--simulate"}, "--model is required; 'kelreader scan --help' shows the usage."},
        WrongUse{
            "UnknownModel",
            {"--model", "VMR183", "--simulate"},
            "There is no model 'VMR183'; the nearest are Peripheral Dynamics Inc. VMR138 (24), Sekonic SR1800 (USB) "
            "(36) and Chatsworth Data OMR1100 (20) ('kelreader models' lists all)."},
        WrongUse{"AmbiguousModel",
                 {"--model", "scantron 8", "--simulate"},
                 "'scantron 8' fits several models: Scantron 8000 (16) and Scantron 8400 (17)."},
        WrongUse{
            "NoLine",
            {"--model", "24"},
            "Where is the reader? Use --port N, --device PATH or --simulate ('kelreader ports' lists the devices)."},
        WrongUse{"TwoLines",
                 {"--model", "24", "--port", "1", "--device", "/dev/null"},
                 "--port excludes --device; 'kelreader scan --help' shows the usage."},
        WrongUse{"PortThatIsNoNumber",
                 {"--model", "24", "--port", "one"},
                 "Could not convert: --port = one; 'kelreader scan --help' shows the usage."},
        WrongUse{"UnknownProperty",
                 {"--model", "24", "--simulate", "--set", "SleepTme=1"},
                 "The reader has no property 'SleepTme' that can be set; the nearest is SleepTime."},
        WrongUse{"UnknownValue",
                 {"--model", "24", "--simulate", "--set", "Duplex=perhaps"},
                 "'perhaps' does not fit Duplex, which takes true or false."},
        WrongUse{"NoFormFile",
                 {"--model", "24", "--simulate", "--form", "/nonexistent"},
                 "The form file /nonexistent cannot be read: No such file or directory."},
        WrongUse{"NoAnswerKeyFile",
                 {"--model", "40", "--device", "/nonexistent", "--answer-key", "/nokey"},
                 "The answer key file /nokey cannot be read: No such file or directory."},
        WrongUse{"UnknownFault",
                 {"--model", "24", "--simulate", "--fault", "burn"},
                 "fault \"burn\": unknown word \"burn\". A fault is WORD[=VALUE]@PLACE; the words are drop, garble, "
                 "split, drip, late, silent, jam, empty, unplug; a place is byte=N, sheet=N or sheet=N,byte=N. "
                 "'kelreader simulate --list-faults' lists the others."},
        WrongUse{"UnknownSetting",
                 {"--model", "24", "--simulate", "--setting", "x=1"},
                 "unknown setting x; this model knows feed-ms, high-bits, line, noise, status1, status2, threshold."},
        WrongUse{"SheetsWithoutSimulation",
                 {"--model", "24", "--port", "1", "--seed", "1"},
                 "The options of a simulated reader go with --simulate."},
        WrongUse{"EmptyNumber",
                 {"--model", "24", "--simulate", "--max-sheets", ""},
                 "--max-sheets has an empty value; leave it out, or give it one."},
        WrongUse{"EmptyFile",
                 {"--model", "24", "--simulate", "--form", ""},
                 "--form has an empty value; leave it out, or give it one."},
        WrongUse{"SheetBeforeTheFirst",
                 {"--model", "24", "--simulate", "--reject-sheets", "1,0"},
                 "There is no sheet 0 to reject; the first is 1."},
        WrongUse{"OneFileForTwo",
                 {"--model", "24", "--port", "1", "--out", "/tmp/x", "--trace", "/tmp/x"},
                 "--out and --trace cannot share a file; name another one for either."},
        WrongUse{"CharacterThatIsNotSent",
                 {"--model", "24", "--simulate", "--set", "Printer.Buffer1=\xE2\x82\xAC"},
                 "'\xE2\x82\xAC' does not fit Printer.Buffer1, which takes characters of Latin-1 only."},
        WrongUse{"UnknownFormat",
                 {"--model", "24", "--simulate", "--format", "xml"},
                 "--format: xml not in {json,csv,table,html}; 'kelreader scan --help' shows the usage."},
        WrongUse{
            "UnknownOption",
            {"--model", "24", "--simulate", "--sheets-max", "1"},
            "The following arguments were not expected: 1 --sheets-max; 'kelreader scan --help' shows the usage."}),
    [](const auto& use) { return std::string(use.param.name); });

class BrokenForm : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(BrokenForm, IsRefusedWithOneSentenceThatNamesThePlace)
{
    const TextFile form(GetParam().first);
    const CommandOutcome outcome = runCommand({"scan", "--model", "24", "--simulate", "--form", form.path()});
    EXPECT_EQ(outcome.errors, "kelreader: " + form.path() + GetParam().second + "\n");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BrokenForm,
    testing::Values(
        std::pair{"{\"side1Rows\":\n[63",
                  " is not JSON: line 2, column 4: syntax error while parsing array - unexpected "
                  "end of input; expected ']'."},
        std::pair{R"({"side1Rows":[-63]})", ": side1Rows[0] has to be a whole number from 0 to 32767, not -63."},
        std::pair{R"({"windows":[{"NumRows":1},{"NumCols":-2}]})",
                  ": windows[1].NumCols has to be a whole number from 0 to 32767, not -2."},
        std::pair{R"({"rows":[63]})", ": the file has an unknown key \"rows\"; the nearest are side1Rows, side2Rows "
                                      "and side1Cols."}));

class BrokenAnswerKey : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(BrokenAnswerKey, IsRefusedBeforeTheReaderIsTouched)
{
    Pty line;
    const TextFile key(GetParam().first);
    const CommandOutcome outcome =
        runCommand({"scan", "--model", "40", "--device", line.name(), "--answer-key", key.path()});
    EXPECT_EQ(outcome.errors, "kelreader: " + key.path() + GetParam().second + "\n");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(line.read(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BrokenAnswerKey,
    testing::Values(
        std::pair{R"({"formIds":["1"],"questions":[{"name":"Question 1","choices":["A","B"],"correctAnswers":["C"]}]})",
                  ": questions[0].correctAnswers[0] has the answer \"C\", which is not among the choices A and B."},
        std::pair{
            R"({"formIds":["1"],"questions":[{"name":"Question 1","choices":["A"],"correctAnswers":["A","A","A","A","A"]}]})",
            ": questions[0].correctAnswers has 5 versions, and a reader stores at most 4."},
        std::pair{R"({"questions":[{"name":"Question 1","choices":["A"],"correctAnswers":["A"]}]})",
                  ": the file has no form identifier: formIds needs one for each page."}));

} // namespace
} // namespace kel::test
