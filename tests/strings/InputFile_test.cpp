// SPDX-License-Identifier: MIT
#include "strings/InputFile.h"
#include "tests/strings/LanguageFileMaker.h"
#include "tests/types/FailureOf.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

class InputFileTest : public testing::Test {
protected:
    InputFile open(const std::string& content) { return InputFile(folder.write("lines.txt", content)); }

    static std::vector<std::string> rest(InputFile& file)
    {
        std::vector<std::string> lines;
        while (!file.Eof())
            lines.push_back(file.LineInput());
        return lines;
    }

    TemporaryFolder folder;
};

TEST_F(InputFileTest, ReadsLinesOfAllEnds)
{
    InputFile file = open("a\r\nb\nc\rd\n\r\r\n\ne");
    EXPECT_EQ(rest(file), (std::vector<std::string>{"a", "b", "c", "d", "", "", "", "e"}));
}

TEST_F(InputFileTest, HasNoLineBehindTheLastEnd)
{
    InputFile file = open("a\r\n");
    EXPECT_EQ(file.LineInput(), "a");
    EXPECT_TRUE(file.Eof());
    EXPECT_EQ(failureOf([&] { return file.LineInput(); }), FailureCode::InputPastEndOfFile);
}

TEST_F(InputFileTest, ReadsLinesAcrossItsBlocks)
{
    for (std::size_t length = 16380; length < 16390; ++length) {
        const std::string line(length, 'x');
        InputFile file = open(line + "\r\n" + line + line + "\r\nend");
        EXPECT_EQ(rest(file), (std::vector{line, line + line, std::string("end")})) << length;
    }
}

TEST_F(InputFileTest, SeeksBytesCountedFromOne)
{
    InputFile file = open("ab\r\ncd\r\n");
    EXPECT_EQ(file.LOF(), 8);
    file.Seek(5);
    EXPECT_EQ(file.LineInput(), "cd");
    file.Seek(2);
    EXPECT_EQ(file.LineInput(), "b");
    EXPECT_EQ(file.LOF(), 8);
    EXPECT_EQ(file.LineInput(), "cd");
    file.Seek(1);
    EXPECT_EQ(file.LineInput(), "ab");
    file.Seek(9);
    EXPECT_TRUE(file.Eof());
    file.Seek(100);
    EXPECT_TRUE(file.Eof());
}

TEST_F(InputFileTest, StaysWhereItIsWhenAskedForItsLength)
{
    InputFile file = open("a\r\n" + std::string(40000, 'x') + "\r\nb");
    EXPECT_EQ(file.LineInput(), "a");
    EXPECT_EQ(file.LOF(), 40006);
    EXPECT_EQ(file.LineInput().size(), 40000U);
    EXPECT_EQ(file.LineInput(), "b");
}

TEST_F(InputFileTest, RefusesPositionsBelowOneAndStaysWhereItIs)
{
    InputFile file = open("ab\r\ncd\r\n");
    EXPECT_EQ(file.LineInput(), "ab");
    EXPECT_EQ(failureOf([&] {
                  file.Seek(0);
                  return 0;
              }),
              FailureCode::BadRecordNumber);
    EXPECT_EQ(failureOf([&] {
                  file.Seek(-1);
                  return 0;
              }),
              FailureCode::BadRecordNumber);
    EXPECT_EQ(file.LineInput(), "cd");
}

TEST_F(InputFileTest, FailsWithoutAFile)
{
    EXPECT_EQ(failureOf([&] { return InputFile(folder.file("none.txt")); }), FailureCode::FileNotFound);
    EXPECT_EQ(failureOf([&] { return InputFile(folder.write("a", "") + "/b"); }), FailureCode::FileNotFound);
    InputFile file;
    EXPECT_EQ(failureOf([&] { return file.Eof(); }), FailureCode::BadFileName);
    EXPECT_EQ(failureOf([&] {
                  file.Seek(1);
                  return 0;
              }),
              FailureCode::BadFileName);
    EXPECT_EQ(failureOf([&] { return file.LOF(); }), FailureCode::BadFileName);
    EXPECT_EQ(failureOf([&] { return file.LineInput(); }), FailureCode::BadFileName);
}

TEST_F(InputFileTest, ReadsWhatIsAddedBehindItsEnd)
{
    InputFile file = open("a\r\n");
    EXPECT_EQ(file.LineInput(), "a");
    EXPECT_TRUE(file.Eof());
    std::ofstream(folder.file("lines.txt"), std::ios::binary | std::ios::app) << "b";
    EXPECT_EQ(file.LineInput(), "b");
}

} // namespace
} // namespace kel::test
