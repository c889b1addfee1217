// SPDX-License-Identifier: MIT
#include "types/LineText.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(LineText, EachByteIsACharacter)
{
    std::string bytes;
    for (int code = 0; code < 256; ++code)
        bytes += static_cast<char>(code);
    const std::string text = textOfLine(bytes);
    EXPECT_EQ(text.size(), 128U + 2 * 128U);
    EXPECT_EQ(lineOfText(text), bytes);
    EXPECT_EQ(textOfLine("\xC4\x81"), "\xC3\x84\xC2\x81");
    EXPECT_EQ(lineOfText(""), "");
}

TEST(LineText, OtherCharactersHaveNoByte)
{
    for (const char* text :
         {"\xC4\x80", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "a\xFF", "\xC3", "\xC3(", "\xC0\xAF", "\x80"})
        EXPECT_EQ(lineOfText(text), std::nullopt) << text;
}

} // namespace
} // namespace kel::test
