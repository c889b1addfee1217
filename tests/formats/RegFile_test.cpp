// SPDX-License-Identifier: MIT
#include "formats/RegFile.h"

#include "formats/Utf16.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kHeading = "Windows Registry Editor Version 5.00\r\n";

const RegistryPath kKey{kelReaderRegistryKeyCurrentUser, "Software\\Reader"};

RegFileEntry valueEntry(const std::string& name, std::uint32_t type, const std::string& data)
{
    return {kKey, name, false, {static_cast<RegistryType>(type), data}};
}

RegFileEntry keyEntry(const RegistryPath& key, bool removed = false)
{
    return {key, std::nullopt, removed, {}};
}

std::string bytes(std::initializer_list<int> codes)
{
    std::string result;
    for (const int code : codes)
        result += static_cast<char>(code);
    return result;
}

/// The value after `"x"=` in a file.
RegistryValue parsedValue(const std::string& text)
{
    const std::vector<RegFileEntry> entries = parseRegFile(kHeading + ("[HKCU\\Software\\Reader]\r\n\"x\"=" + text));
    EXPECT_EQ(entries.size(), 2U);
    return entries.at(1).value;
}

std::string refusal(const std::string& file)
{
    try {
        static_cast<void>(parseRegFile(file));
    } catch (const RegFileError& error) {
        return error.what();
    }
    return "taken";
}

/// What a file with these lines after its heading is refused with.
std::string refusalOf(const std::string& lines)
{
    return refusal(kHeading + lines);
}

/// The file that is written, in UTF-8 and without its mark.
std::string written(const std::vector<RegFileEntry>& entries)
{
    const std::string file = regFileBytes(entries);
    EXPECT_THAT(file, StartsWith("\xFF\xFE"));
    return utf8Of(fromLittleEndian(file.substr(2)));
}

std::vector<RegFileEntry> everyKind()
{
    std::vector<RegFileEntry> entries = {keyEntry(kKey)};
    entries.push_back(valueEntry("", 1, "the key itself"));
    entries.push_back(valueEntry("text", 1, "9600"));
    entries.push_back(valueEntry("a \"quoted\" \\ name", 1, "a \"quoted\" \\ text"));
    entries.push_back(valueEntry("letters", 1, "\xC3\xBC \xE2\x82\xAC \xF0\x9F\x98\x80"));
    entries.push_back(valueEntry("no text", 1, ""));
    entries.push_back(valueEntry("blank", 1, " "));
    entries.push_back(valueEntry("lines", 1, "one\r\ntwo\nthree"));
    entries.push_back(valueEntry("zero within", 1, std::string("a\0b", 3)));
    entries.push_back(valueEntry("expandable", 2, "%HOME%\\reader"));
    entries.push_back(valueEntry("bytes", 3, std::string("\0\x80\xFF", 3)));
    entries.push_back(valueEntry("no bytes", 3, ""));
    entries.push_back(valueEntry("many bytes", 3, std::string(300, 'x')));
    entries.push_back(valueEntry("number", 4, bytes({0x80, 0x25, 0, 0})));
    entries.push_back(valueEntry("half a number", 4, bytes({0x80, 0x25})));
    entries.push_back(valueEntry("number turned", 5, bytes({0, 0, 0x25, 0x80})));
    entries.push_back(valueEntry("texts", 7, std::string("one\0two\0", 8)));
    entries.push_back(valueEntry("no texts", 7, ""));
    entries.push_back(valueEntry("long number", 11, bytes({1, 2, 3, 4, 5, 6, 7, 0xFF})));
    entries.push_back(valueEntry("nothing", 0, "x"));
    entries.push_back(valueEntry("of a number of its own", 0xFFFF1234U, "data"));
    entries.push_back({kKey, "removed", true, {}});
    entries.push_back(keyEntry({kelReaderRegistryKeyCurrentUser, "Software\\Reader\\A [1] key"}));
    entries.push_back(keyEntry({kelReaderRegistryKeyLocalMachine, ""}));
    entries.push_back(keyEntry({kelReaderRegistryKeyUsers, "Gone"}, true));
    return entries;
}

TEST(RegFile, EveryKindGoesThereAndBack)
{
    EXPECT_EQ(parseRegFile(regFileBytes(everyKind())), everyKind());
}

TEST(RegFile, Utf8WithAndWithoutMarkAndUtf16WithoutOneAreRead)
{
    const std::string utf16 = regFileBytes(everyKind());
    const std::string utf8 = written(everyKind());
    EXPECT_EQ(parseRegFile(utf8), everyKind());
    EXPECT_EQ(parseRegFile("\xEF\xBB\xBF" + utf8), everyKind());
    EXPECT_EQ(parseRegFile(utf16.substr(2)), everyKind());
}

TEST(RegFile, WrittenFormIsThatOfTheEditor)
{
    const std::string text = written({
        keyEntry(kKey),
        valueEntry("", 1, "default"),
        valueEntry("Path", 1, "C:\\\"x\""),
        valueEntry("Baud", 4, bytes({0x80, 0x25, 0, 0})),
        valueEntry("Raw", 3, bytes({0x0a, 0xff})),
        valueEntry("Expand", 2, "%A%"),
        valueEntry("Multi", 7, std::string("a\0b\0", 4)),
        valueEntry("Long", 11, bytes({1, 0, 0, 0, 0, 0, 0, 0})),
        valueEntry("None", 0, ""),
        {kKey, "Gone", true, {}},
        keyEntry({kelReaderRegistryKeyCurrentUser, "Software\\Gone"}, true),
    });
    EXPECT_EQ(text, "Windows Registry Editor Version 5.00\r\n"
                    "\r\n"
                    "[HKEY_CURRENT_USER\\Software\\Reader]\r\n"
                    "@=\"default\"\r\n"
                    "\"Path\"=\"C:\\\\\\\"x\\\"\"\r\n"
                    "\"Baud\"=dword:00002580\r\n"
                    "\"Raw\"=hex:0a,ff\r\n"
                    "\"Expand\"=hex(2):25,00,41,00,25,00,00,00\r\n"
                    "\"Multi\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
                    "\"Long\"=hex(b):01,00,00,00,00,00,00,00\r\n"
                    "\"None\"=hex(0):\r\n"
                    "\"Gone\"=-\r\n"
                    "\r\n"
                    "[-HKEY_CURRENT_USER\\Software\\Gone]\r\n"
                    "\r\n");
}

TEST(RegFile, LongLinesOfBytesGoOnInTheNext)
{
    const std::string text = written({keyEntry(kKey), valueEntry("name", 3, std::string(60, '\x11'))});
    std::string line;
    std::vector<std::size_t> widths;
    for (const char character : text.substr(text.find("\"name\""))) {
        if (character == '\n') {
            widths.push_back(line.size() - 1);
            line.clear();
        } else {
            line += character;
        }
    }
    // 60 bytes: "name"=hex: and 22 of them, 2 blanks and 25 of them, and the last 13.
    EXPECT_THAT(widths, ElementsAre(78, 78, 40, 0));
}

TEST(RegFile, BytesThatAreNoUtf8AreWrittenAsLatin1)
{
    EXPECT_THAT(written({keyEntry(kKey), valueEntry("x", 1, "\xE9t\xE9")}), HasSubstr("\"x\"=\"\xC3\xA9t\xC3\xA9\""));
}

TEST(RegFile, HalfOfAPairIsKept)
{
    const std::string half = "\"x\"=hex(2):00,d8,41,00,00,00";
    EXPECT_THAT(written(parseRegFile(kHeading + ("[HKCU\\a]\n" + half))), HasSubstr(half));
}

TEST(RegFile, CommentsBlanksAndShortHivesAreTaken)
{
    const std::vector<RegFileEntry> entries = parseRegFile("Windows Registry Editor Version 5.00\n"
                                                           "; a comment\n"
                                                           "\n"
                                                           "  [hkcu\\Software\\Reader]  ; one [more]\n"
                                                           "\t\"a\" = \"1\" ; and more\n"
                                                           "@=DWORD:A ;\n"
                                                           "\"b\"=hex:01 , 2,\\\n"
                                                           "  0F,\\  \r\n"
                                                           "  ff\n"
                                                           "\"c\"=-");
    EXPECT_EQ(entries, (std::vector<RegFileEntry>{keyEntry(kKey),
                                                  valueEntry("a", 1, "1"),
                                                  valueEntry("", 4, bytes({0x0A, 0, 0, 0})),
                                                  valueEntry("b", 3, bytes({1, 2, 15, 255})),
                                                  {kKey, "c", true, {}}}));
}

TEST(RegFile, TextBetweenQuotesMayHoldLineEnds)
{
    EXPECT_EQ(parsedValue("\"one\r\ntwo\"").data, "one\r\ntwo");
}

TEST(RegFile, TextsLoseOneZeroAtTheirEnd)
{
    EXPECT_EQ(parsedValue("hex(1):61,00,00,00"), (RegistryValue{RegistryType::Text, "a"}));
    EXPECT_EQ(parsedValue("hex(2):61,00"), (RegistryValue{RegistryType::ExpandableText, "a"}));
    EXPECT_EQ(parsedValue("hex(7):61,00,00,00,00,00"), (RegistryValue{RegistryType::MultiText, std::string("a\0", 2)}));
    EXPECT_EQ(parsedValue("hex(4):01,00,00,00"), (RegistryValue{RegistryType::Number, bytes({1, 0, 0, 0})}));
}

TEST(RegFile, FileThatIsNoneIsRefused)
{
    const std::string none =
        "Line 1: this is not a registry file; such a file begins with \"Windows Registry Editor Version 5.00\".";
    EXPECT_EQ(refusal(""), none);
    EXPECT_EQ(refusal("{\"side1Rows\":[63]}"), none);
    EXPECT_EQ(refusal("Windows Registry Editor Version 6.00\r\n"), none);
    EXPECT_EQ(refusal("REGEDIT4\r\n"), "Line 1: the file is of version 4; export it again in version 5.00.");
    EXPECT_THAT(refusal("\xFE\xFF"), HasSubstr("Line 1: the file is UTF-16 in big-endian order"));
    EXPECT_EQ(refusal(regFileBytes({keyEntry(kKey)}) + "x"), "Line 5: the file ends within a character.");
    EXPECT_THAT(refusalOf("[HKCU\\a]\r\n\"x\"=\"\xE9\""), StartsWith("Line 3: a character is not UTF-8"));
    EXPECT_EQ(refusalOf(""), "taken");
}

TEST(RegFile, FaultsAreToldWithTheirLine)
{
    const std::string key = "[HKCU\\a]\r\n";
    EXPECT_THAT(refusalOf("[HKCU\\a\r\n"), StartsWith("Line 2: the key has no bracket"));
    EXPECT_THAT(refusalOf("[HKCU\\a] b\r\n"), StartsWith("Line 2: the key has no bracket"));
    EXPECT_THAT(refusalOf("\r\n[HKEY_DYN_DATA\\a]\r\n"), StartsWith("Line 3: the key does not begin with a hive"));
    EXPECT_THAT(refusalOf("[-HKCU]\r\n"), StartsWith("Line 2: a hive as a whole"));
    EXPECT_THAT(refusalOf("\"x\"=\"1\""), StartsWith("Line 2: the value belongs to no key"));
    EXPECT_THAT(refusalOf("[-HKCU\\a]\n\"x\"=\"1\""), StartsWith("Line 3: the value belongs to a key that is removed"));
    EXPECT_THAT(refusalOf(key + "x=\"1\"\r\n"), StartsWith("Line 3: this line is neither a key"));
    EXPECT_THAT(refusalOf(key + "\"x\"\r\n"), StartsWith("Line 3: an equals sign"));
    EXPECT_THAT(refusalOf(key + "\"x\"=\"1\r\n\r\n"), StartsWith("Line 3: the text has no quote"));
    EXPECT_THAT(refusalOf(key + "\"x"), StartsWith("Line 3: the text has no quote"));
    EXPECT_THAT(refusalOf(key + "\"x\"=\"C:\\temp\""), StartsWith("Line 3: write a backslash within quotes"));
    EXPECT_THAT(refusalOf(key + "\"x\"=\"1\\"), StartsWith("Line 3: write a backslash within quotes"));
    EXPECT_THAT(refusalOf(key + "\"x\"=1"), StartsWith("Line 3: the value is neither a text in quotes"));
    EXPECT_THAT(refusalOf(key + "\"x\"=qword:1"), StartsWith("Line 3: the value is neither a text in quotes"));
    EXPECT_THAT(refusalOf(key + "\"x\"="), StartsWith("Line 3: the value is neither a text in quotes"));
    for (const char* number : {"", "g", "123456789"})
        EXPECT_THAT(refusalOf(key + "\"x\"=dword:" + number), StartsWith("Line 3: dword: needs")) << number;
    for (const char* list : {"1,", ",1", "xyz", "123", "1,\\\r\n ;"})
        EXPECT_THAT(refusalOf(key + "\"x\"=hex:" + list), HasSubstr(": hex: needs bytes")) << list;
    EXPECT_THAT(refusalOf(key + "\"x\"=hex:1,\\\r\n2,\\\r\n3,q"), StartsWith("Line 5: hex: needs bytes"));
    EXPECT_THAT(refusalOf(key + "\"x\"=hex:1,\\2"), StartsWith("Line 3: a backslash between bytes"));
    EXPECT_THAT(refusalOf(key + "\"x\"=hex:1,\\\r\n"), HasSubstr(": the file ends within a value"));
    for (const char* kind : {"hex():", "hex(g):", "hex(2:", "hex(2)x:", "hex(123456789):"})
        EXPECT_THAT(refusalOf(key + "\"x\"=" + kind), StartsWith("Line 3: hex( ) needs")) << kind;
    EXPECT_THAT(refusalOf(key + "\"x\"=hex(2):61"), StartsWith("Line 3: the text ends within"));
    EXPECT_EQ(refusalOf(key + "\"x\"=\"1\" 2"), "Line 3: the line goes on after its end:  2");
    EXPECT_THAT(refusalOf(key + "\"x\"=-1"), StartsWith("Line 3: the line goes on"));
    EXPECT_THAT(refusalOf(key + "\"x\"=dword:1g"), StartsWith("Line 3: the line goes on"));
}

TEST(RegistryPath, HivesHaveALongAndAShortName)
{
    EXPECT_EQ(registryPath("HKEY_CURRENT_USER\\Software\\Reader"), kKey);
    EXPECT_EQ(registryPath("hkcu\\\\Software\\Reader\\"), kKey);
    EXPECT_EQ(registryPath("HKLM"), (RegistryPath{kelReaderRegistryKeyLocalMachine, ""}));
    EXPECT_EQ(registryPath("HKCUX\\a"), std::nullopt);
    EXPECT_EQ(registryPath("Software\\Reader"), std::nullopt);
    EXPECT_EQ(registryPath(""), std::nullopt);
    EXPECT_EQ(registryPathText(kKey), "HKEY_CURRENT_USER\\Software\\Reader");
    for (const char* name : {"HKCR", "HKCU", "HKLM", "HKU", "HKPD", "HKCC"}) {
        const std::optional<RegistryPath> path = registryPath(name);
        ASSERT_TRUE(path) << name;
        EXPECT_EQ(registryPath(registryPathText(*path)), path);
    }
}

} // namespace
} // namespace kel::test
