// SPDX-License-Identifier: MIT
#include "formats/JsonValue.h"
#include "formats/RegFile.h"
#include "formats/Utf16.h"
#include "tests/cli/CommandRun.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <unistd.h>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using Words = std::vector<std::string>;

constexpr const char* kKey = "HKCU\\Software\\Reader";
/// The command with a settings store of its own that is not there at first.
class SettingsCommand : public testing::Test {
protected:
    SettingsCommand()
        : store_(std::filesystem::temp_directory_path() / ("kelreader-settings-" + std::to_string(::getpid())))
    {
        std::filesystem::remove_all(store_);
    }

    ~SettingsCommand() override { std::filesystem::remove_all(store_); }

    [[nodiscard]] CommandOutcome run(const Words& words) const
    {
        Words all = {"KELREADER_REGISTRY_DIR=" + store_.string(), readerProgram()};
        all.insert(all.end(), words.begin(), words.end());
        return RunningCommand(all, "/usr/bin/env").finish();
    }

    [[nodiscard]] CommandOutcome settings(Words words) const
    {
        words.insert(words.begin(), "settings");
        return run(words);
    }

    void set(const std::string& name, const std::string& value) const
    {
        ASSERT_EQ(settings({"set", kKey, name, value}).status, 0) << name;
    }

    void refuse(const Words& words, int status, const std::string& sentence) const
    {
        const CommandOutcome outcome = settings(words);
        EXPECT_EQ(outcome.errors, "kelreader: " + sentence + "\n");
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.status, status);
    }

    std::filesystem::path store_;
};

TEST_F(SettingsCommand, ValueIsSetAndGotAndDeleted)
{
    set("ScannerBaud", "9600");
    for (const char* key : {"HKEY_CURRENT_USER\\Software\\Reader", "hkcu\\software\\reader\\"}) {
        const CommandOutcome got = settings({"get", key, "scannerbaud"});
        EXPECT_EQ(got.output, "9600\n") << key;
        EXPECT_EQ(got.errors, "");
        EXPECT_EQ(got.status, 0);
    }
    EXPECT_EQ(settings({"delete", kKey, "ScannerBaud"}).status, 0);
    refuse({"get", kKey, "ScannerBaud"}, 1, "The key HKEY_CURRENT_USER\\Software\\Reader has no value 'ScannerBaud'.");
    refuse({"delete", kKey, "ScannerBaud"}, 1,
           "The key HKEY_CURRENT_USER\\Software\\Reader has no value 'ScannerBaud'.");
}

TEST_F(SettingsCommand, EmptyValueIsKeptAsOneBlank)
{
    set("ScannerParity", "");
    EXPECT_EQ(settings({"get", kKey, "ScannerParity"}).output, " \n");
}

TEST_F(SettingsCommand, ValuesOfAnyLookAreTexts)
{
    for (const char* value : {"-1", "[1,2]", "a=b", "\xC3\xBC", "\"", "&h2580"}) {
        set("x", value);
        EXPECT_EQ(settings({"get", kKey, "x"}).output, std::string(value) + "\n");
    }
}

TEST_F(SettingsCommand, KeyIsDeletedWithEverythingBelow)
{
    set("a", "1");
    ASSERT_EQ(settings({"set", "HKCU\\Software\\Reader\\Below", "b", "2"}).status, 0);
    EXPECT_EQ(settings({"delete", kKey}).status, 0);
    refuse({"list", "HKCU\\Software\\Reader\\Below"}, 1,
           "There is no key HKEY_CURRENT_USER\\Software\\Reader\\Below, or it may not be read.");
    refuse({"delete", kKey}, 1, "There is no key HKEY_CURRENT_USER\\Software\\Reader, or it may not be read.");
    EXPECT_EQ(settings({"list", "HKCU\\Software"}).status, 0);
}

TEST_F(SettingsCommand, HiveAsAWholeIsNotDeleted)
{
    refuse({"delete", "HKCU"}, 2, "A hive as a whole cannot be deleted; name a key below it.");
}

TEST_F(SettingsCommand, ListShowsValuesAndTheKeysBelow)
{
    const TextFile file(kRegistryHeading + std::string("[HKCU\\Software\\Reader]\r\n"
                                                       "@=\"default\"\r\n"
                                                       "\"Text\"=\"9600\"\r\n"
                                                       "\"Number\"=dword:00002580\r\n"
                                                       "\"Long\"=hex(b):00,00,00,00,01,00,00,00\r\n"
                                                       "\"Texts\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
                                                       "\"Bytes\"=hex:0a,FF\r\n"
                                                       "\"Own\"=hex(1234):01\r\n"
                                                       "[HKCU\\Software\\Reader\\Below]\r\n"));
    ASSERT_EQ(settings({"import", file.path()}).errors, "");
    EXPECT_EQ(settings({"list", kKey}).output, "@       REG_SZ        default\n"
                                               "Bytes   REG_BINARY    0a,ff\n"
                                               "Long    REG_QWORD     4294967296\n"
                                               "Number  REG_DWORD     9600\n"
                                               "Own     4660          01\n"
                                               "Text    REG_SZ        9600\n"
                                               "Texts   REG_MULTI_SZ  a\\0b\n"
                                               "[HKEY_CURRENT_USER\\Software\\Reader\\Below]\n");
    EXPECT_EQ(settings({"list", kKey, "--format", "json"}).output,
              "[\n"
              R"({"name":"","type":"REG_SZ","value":"default"},)"
              "\n"
              R"({"name":"Bytes","type":"REG_BINARY","value":"0a,ff"},)"
              "\n"
              R"({"name":"Long","type":"REG_QWORD","value":4294967296},)"
              "\n"
              R"({"name":"Number","type":"REG_DWORD","value":9600},)"
              "\n"
              R"({"name":"Own","type":"4660","value":"01"},)"
              "\n"
              R"({"name":"Text","type":"REG_SZ","value":"9600"},)"
              "\n"
              R"({"name":"Texts","type":"REG_MULTI_SZ","value":["a","b"]})"
              "\n]\n");
    EXPECT_EQ(settings({"get", kKey, "@"}).output, "default\n");
    EXPECT_EQ(settings({"get", kKey, "Number"}).output, "9600\n");
    EXPECT_EQ(settings({"list", "HKCU\\Software\\Reader\\Below"}).output, "");
}

TEST_F(SettingsCommand, ImportedKindsAreExportedTheSame)
{
    const std::string text = "Windows Registry Editor Version 5.00\r\n"
                             "\r\n"
                             "[HKEY_CURRENT_USER\\Software\\Reader]\r\n"
                             "@=\"default\"\r\n"
                             "\"A text\"=\"C:\\\\x \\\"y\\\" \xC3\xBC\"\r\n"
                             "\"B empty\"=\"\"\r\n"
                             "\"C number\"=dword:ffffff80\r\n"
                             "\"D bytes\"=hex:00,01\r\n"
                             "\"E no bytes\"=hex:\r\n"
                             "\"F expandable\"=hex(2):25,00,00,00\r\n"
                             "\"G texts\"=hex(7):61,00,00,00,00,00\r\n"
                             "\"H long\"=hex(b):01,02,03,04,05,06,07,08\r\n"
                             "\"I none\"=hex(0):2a\r\n"
                             "\"J own\"=hex(fffffff0):00,ff\r\n"
                             "\r\n"
                             "[HKEY_CURRENT_USER\\Software\\Reader\\Below]\r\n"
                             "\r\n"
                             "[HKEY_CURRENT_USER\\Software\\Reader\\Below\\Deep]\r\n"
                             "\"x\"=\"1\"\r\n"
                             "\r\n";
    const std::string utf16 = "\xFF\xFE" + littleEndianOf(utf16Of(text));
    for (const std::string& content : {text, "\xEF\xBB\xBF" + text, utf16}) {
        const TextFile file(content);
        const TextFile out("what was there before");
        const CommandOutcome imported = settings({"import", file.path()});
        EXPECT_EQ(imported.errors, "");
        EXPECT_EQ(imported.status, 0);
        EXPECT_EQ(settings({"export", kKey, out.path()}).status, 0);
        EXPECT_EQ(out.text(), utf16);
        EXPECT_EQ(settings({"delete", kKey}).status, 0);
    }
}

TEST_F(SettingsCommand, ImportRemovesWhatTheFileTakesAway)
{
    set("a", "1");
    set("b", "2");
    ASSERT_EQ(settings({"set", "HKCU\\Software\\Gone", "x", "1"}).status, 0);
    const TextFile file(kRegistryHeading + std::string("[-HKCU\\Software\\Gone]\r\n[-HKCU\\Software\\Never]\r\n"
                                                       "[HKCU\\Software\\Reader]\r\n\"a\"=-\r\n\"never\"=-\r\n"));
    EXPECT_EQ(settings({"import", file.path()}).errors, "");
    EXPECT_EQ(settings({"list", kKey}).output, "b  REG_SZ  2\n");
    EXPECT_EQ(settings({"list", "HKCU\\Software"}).output, "[HKEY_CURRENT_USER\\Software\\Reader]\n");
}

TEST_F(SettingsCommand, FileThatIsNoneChangesNothing)
{
    const TextFile none("ScannerBaud=9600\n");
    refuse({"import", none.path()}, 2,
           "The registry file " + none.path() +
               " cannot be imported. Line 1: this is not a registry file; such a file "
               "begins with \"Windows Registry Editor Version 5.00\".");
    const TextFile half(kRegistryHeading + std::string("[HKCU\\Software\\Reader]\r\n\"a\"=\"1\"\r\n\"b\"=\"2\r\n"));
    refuse({"import", half.path()}, 2,
           "The registry file " + half.path() + " cannot be imported. Line 5: the text has no quote at its end.");
    EXPECT_EQ(settings({"import", "/no/such/file"}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(store_));
}

TEST_F(SettingsCommand, StoreThatIsOnlyReadIsNotMade)
{
    const std::string none = "There is no key HKEY_CURRENT_USER\\Software\\Reader, or it may not be read.";
    const TextFile file(kRegistryHeading + std::string("[-HKCU\\Software\\Reader]\r\n"));
    refuse({"list", kKey}, 1, none);
    refuse({"get", kKey, "x"}, 1, none);
    refuse({"delete", kKey}, 1, none);
    refuse({"delete", kKey, "x"}, 1, none);
    refuse({"export", kKey, store_.string() + "/x.reg"}, 1, none);
    EXPECT_EQ(settings({"import", file.path()}).status, 0);
    EXPECT_EQ(settings({"show", kKey}).status, 0);
    EXPECT_EQ(settings({"list", "HKLM"}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(store_));
}

TEST_F(SettingsCommand, StoreThatCannotBeWrittenIsAFailure)
{
    const TextFile inTheWay("");
    store_ = inTheWay.path() + "/store";
    refuse({"set", kKey, "x", "1"}, 1,
           "The settings store cannot be written, so HKEY_CURRENT_USER\\Software\\Reader is unchanged.");
    const TextFile file(kRegistryHeading + std::string("[HKLM\\Software\\Reader]\r\n\"x\"=\"1\"\r\n"));
    refuse({"import", file.path()}, 1,
           "The settings store cannot be written, so HKEY_LOCAL_MACHINE\\Software\\Reader is unchanged.");
}

TEST_F(SettingsCommand, WrongUseIsTold)
{
    refuse({"list", "Software\\Reader"}, 2,
           "'Software\\Reader' is not a registry key; write HIVE\\SUBKEY with a hive such as HKEY_CURRENT_USER or "
           "HKCU.");
    for (const Words& words : {Words{}, Words{"lst"}, Words{"list"}, Words{"get", kKey}, Words{"set", kKey, "x"},
                               Words{"export", kKey}, Words{"import"}, Words{"show"}}) {
        const CommandOutcome outcome = settings(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, StartsWith("kelreader: "));
    }
}

TEST_F(SettingsCommand, ShowOfAFreshKeyHasTheDefaults)
{
    const CommandOutcome outcome = settings({"show", kKey, "--format", "json"});
    EXPECT_EQ(outcome.output,
              R"({"ReaderType":0,"ReaderGrade":false,"Barcode":false,"Duplex":false,"Feeder":false,"FlowControl":0,)"
              R"("MarkCutOff":0,"MarkDiscrimination":0,"Printer.Enabled":false,"RecognitionThreshold":0,)"
              R"("Rejecter":false,"BaudRate":9600,"DataBits":7,"Parity":"N","Port":1,"StopBits":1.0,"SleepTime":50,)"
              R"("Timeout":10,"Windowing":false})"
              "\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(SettingsCommand, ShowHasWhatIsKept)
{
    const TextFile file(kRegistryHeading + std::string("[HKCU\\Software\\Reader]\r\n\"ScannerBaud\"=dword:00002580\r\n"
                                                       "\"TimeOut\"=dword:00000102\r\n\"Port\"=\"4\"\r\n"));
    ASSERT_EQ(settings({"import", file.path()}).status, 0);
    set("ScannerType", "24");
    set("Duplex", "true");
    set("ScannerStopBits", "1.5");
    set("SleepTime", "&h20 ms");
    set("Reject", "1");
    const Json shown = Json::parse(settings({"show", kKey, "--format", "json"}).output);
    EXPECT_EQ(shown["ReaderType"], 24);
    EXPECT_EQ(shown["Duplex"], true);
    EXPECT_EQ(shown["StopBits"], 1.5);
    EXPECT_EQ(shown["SleepTime"], 32);
    EXPECT_EQ(shown["Rejecter"], true);
    EXPECT_EQ(shown["BaudRate"], 9600);
    EXPECT_EQ(shown["Timeout"], 0x12);
    EXPECT_EQ(shown["Port"], 1);
    EXPECT_THAT(settings({"show", kKey}).lines(), testing::Contains("ReaderType            24"));
}

TEST_F(SettingsCommand, ShowTellsTheTextThatDoesNotFit)
{
    set("ScannerType", "24");
    set("Duplex", "perhaps");
    set("ScannerBaud", "19200");
    const CommandOutcome outcome = settings({"show", kKey, "--format", "json"});
    const Json shown = Json::parse(outcome.output);
    EXPECT_EQ(shown["ReaderType"], 24);
    EXPECT_NE(shown["BaudRate"], 19200);
    EXPECT_THAT(outcome.errors, StartsWith("kelreader: "));
    EXPECT_THAT(outcome.errors, HasSubstr("Type mismatch"));
    EXPECT_THAT(outcome.errors, HasSubstr("clsKELReader.LoadSettings"));
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(SettingsCommand, ScanTakesTheKeptSettings)
{
    set("ScannerType", "22");
    set("RecognitionThreshold", "198");
    const TextFile sheets(R"([{"side1":[[1,0,0],[0,1,0]]}])");
    const CommandOutcome outcome =
        run(simulatedScan({"--settings", kKey, "--sheets", sheets.path(), "--max-sheets", "1"}, ""));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    ASSERT_EQ(outcome.lines().size(), 2U);
    const Json sheet = Json::parse(outcome.lines()[0]);
    // The threshold is what the kept settings say, and so is the mark one above it.
    EXPECT_EQ(sheet["side1"][0][0], 199);
    EXPECT_EQ(outcome.lines()[1], R"({"event":"end","started":true,"sheets":1,"cancelScan":true,"result":true})");
}

TEST_F(SettingsCommand, ScanWithAModelOfItsOwnTakesTheRest)
{
    set("ScannerType", "13");
    set("RecognitionThreshold", "198");
    const TextFile sheets(R"([{"side1":[[1,0,0],[0,1,0]]}])");
    const CommandOutcome outcome =
        run(simulatedScan({"--settings", kKey, "--sheets", sheets.path(), "--max-sheets", "1"}));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(Json::parse(outcome.lines().at(0))["side1"][0][0], 199);
}

TEST_F(SettingsCommand, ScanWithSettingsThatDoNotFitReadsNothing)
{
    set("ScannerType", "24");
    set("Duplex", "perhaps");
    const CommandOutcome outcome = run(simulatedScan({"--settings", kKey}, ""));
    ASSERT_EQ(outcome.lines().size(), 2U);
    const Json failure = Json::parse(outcome.lines()[0]);
    EXPECT_EQ(failure["event"], "failure");
    EXPECT_EQ(failure["number"], 13);
    EXPECT_EQ(outcome.lines()[1], R"({"event":"end","started":false,"sheets":0,"cancelScan":true,"result":false})");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(SettingsCommand, ScanWantsAModelOrSettings)
{
    const CommandOutcome neither = run({"scan", "--port", "1"});
    EXPECT_EQ(neither.errors, "kelreader: --model is required; 'kelreader scan --help' shows the usage.\n");
    EXPECT_EQ(neither.status, 2);
    EXPECT_EQ(run({"scan", "--settings", "Software\\Reader", "--port", "1"}).status, 2);
    // Settings that name no model.
    EXPECT_EQ(run(simulatedScan({"--settings", kKey}, "")).status, 2);
}

TEST_F(SettingsCommand, ScanAtThePortThatIsKept)
{
    set("ScannerType", "24");
    set("ScannerPort", "7");
    const CommandOutcome outcome = run({"scan", "--settings", kKey});
    EXPECT_THAT(outcome.lines().at(0), HasSubstr("ort 7"));
    EXPECT_EQ(outcome.status, 1);
}

} // namespace
} // namespace kel::test
