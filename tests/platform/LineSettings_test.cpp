// SPDX-License-Identifier: MIT
#include "platform/LineSettings.h"

#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(LineSettings, AreReadFromTheirText)
{
    const LineParameters line = parseLineSettings("1200,E,7,1.5");
    EXPECT_EQ(line.baudRate, 1200);
    EXPECT_EQ(line.parity, 'E');
    EXPECT_EQ(line.dataBits, 7);
    EXPECT_EQ(line.stopBits, 1.5);
    EXPECT_EQ(line.handshaking, 0);
}

TEST(LineSettings, TakeTheParityLetterInEitherCase)
{
    EXPECT_EQ(parseLineSettings("9600,o,8,2").parity, 'O');
}

TEST(LineSettings, GiveTheirTextBack)
{
    for (const char* text : {"9600,N,8,1", "110,O,5,1.5", "256000,M,8,2", "300,S,4,1"})
        EXPECT_EQ(lineSettingsText(parseLineSettings(text)), text);
}

TEST(LineSettings, OfAnotherFormAreAnInvalidPropertyValue)
{
    for (const char* text : {"", "9600", "9600,N,8", "9600,N,8,1,", "9600,N,8,1,1", "0,N,8,1", "-9600,N,8,1",
                             "9600.5,N,8,1", "9600,X,8,1", "9600,,8,1", "9600,NN,8,1", "9600,N,3,1", "9600,N,9,1",
                             "9600,N,8,3", "9600,N,8,0", "9600,N,8,1.6", "9600, N,8,1", "99999999999,N,8,1"}) {
        try {
            static_cast<void>(parseLineSettings(text));
            ADD_FAILURE() << "taken: \"" << text << "\"";
        } catch (const RuntimeFailure& failure) {
            EXPECT_EQ(failure.code(), FailureCode::InvalidPropertyValue) << text;
            EXPECT_NE(failure.text().find(std::string("\"") + text + "\""), std::string::npos) << failure.text();
        }
    }
}

TEST(LineSettings, ACharacterTakesItsStartDataParityAndStopBits)
{
    using namespace std::chrono_literals;
    EXPECT_EQ(parseLineSettings("1000,N,8,1").characterTime(), 10ms);
    EXPECT_EQ(parseLineSettings("1000,E,8,2").characterTime(), 12ms);
    EXPECT_EQ(parseLineSettings("1000,N,5,1.5").characterTime(), Moment(7'500'000));
}

} // namespace
} // namespace kel
