// SPDX-License-Identifier: MIT
#include "simulators/framework/Uart.h"

#include <gtest/gtest.h>

#include <string>

namespace kel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr LineParameters k9600{};

LineParameters line(Int32 baudRate, char parity, Int32 dataBits, double stopBits = 1)
{
    return {.baudRate = baudRate, .parity = parity, .dataBits = dataBits, .stopBits = stopBits};
}

/// What arrives, with "p" and "f" after a byte with a wrong parity or stop bit.
struct Heard {
    std::string bytes;
    std::string errors;
};

/// Sends bytes one after the other, as fast as the sender's line is.
Heard over(const LineParameters& sender, const LineParameters& receiver, std::string_view bytes)
{
    Uart wire(sender, receiver);
    Moment end = 1s;
    for (const char byte : bytes)
        wire.send(end += sender.characterTime(), static_cast<Byte>(byte));
    Heard heard;
    while (const std::optional<Moment> due = wire.due()) {
        const std::optional<Uart::Received> received = wire.receive(*due);
        if (!received)
            continue;
        heard.bytes += static_cast<char>(received->byte);
        heard.errors += received->parityError ? "p" : received->framingError ? "f" : ".";
    }
    return heard;
}

std::string allBytes()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

TEST(Uart, EndsThatAreSetAlikeHearAll)
{
    for (const LineParameters& both : {k9600, line(19200, 'E', 8, 2), line(38400, 'O', 8), line(256000, 'N', 8, 2)}) {
        const Heard heard = over(both, both, allBytes());
        EXPECT_EQ(heard.bytes, allBytes());
        EXPECT_EQ(heard.errors, std::string(256, '.'));
    }
    EXPECT_EQ(over(line(9600, 'E', 7), line(9600, 'E', 7), "A\xC1").bytes, "AA");
}

TEST(Uart, ABitIsTwoToAReceiverOfTwiceTheSpeed)
{
    // Start 0, then 1 0 1 0 1 0 1 0 and the stop bit 1: each twice.
    const Heard heard = over(k9600, line(19200, 'N', 8), "\x55");
    EXPECT_EQ(heard.bytes, "\x66\xE6");
    EXPECT_EQ(heard.errors, "f.");
}

TEST(Uart, TwoBytesAreOneToAReceiverOfHalfTheSpeed)
{
    const Heard heard = over(line(19200, 'N', 8), k9600, "0123456789");
    EXPECT_LT(heard.bytes.size(), 10U);
    EXPECT_FALSE(heard.bytes.empty());
}

TEST(Uart, ParityThatIsNotExpectedIsTakenForABit)
{
    const Heard seven = over(line(9600, 'E', 7), k9600, "AC");
    EXPECT_EQ(seven.bytes, "A\xC3");
    EXPECT_EQ(seven.errors, "..");
    const Heard eight = over(line(9600, 'E', 8), k9600, "AC");
    EXPECT_EQ(eight.bytes, "AC");
    EXPECT_EQ(eight.errors, "f."); // the parity bit of "A" is 0 where a stop bit should be
}

TEST(Uart, ParityThatIsExpectedAndOtherIsWrong)
{
    EXPECT_EQ(over(line(9600, 'E', 8), line(9600, 'O', 8), "AC").errors, "pp");
    EXPECT_EQ(over(k9600, line(9600, 'E', 7), "AC").errors, ".p");
}

TEST(Uart, StopBitsAreLookedAtOnce)
{
    EXPECT_EQ(over(line(9600, 'N', 8, 2), k9600, "0123").bytes, "0123");
    EXPECT_EQ(over(k9600, line(9600, 'N', 8, 2), "0123").bytes, "0123");
}

TEST(Uart, AClockMayBeALittleOff)
{
    EXPECT_EQ(over(line(9792, 'N', 8), k9600, allBytes()).bytes, allBytes());
    EXPECT_EQ(over(line(9408, 'N', 8), k9600, allBytes()).bytes, allBytes());
    EXPECT_NE(over(line(10560, 'N', 8), k9600, allBytes()).bytes, allBytes());
}

TEST(Uart, ASilentWireHasNothingDue)
{
    Uart wire(k9600, k9600);
    EXPECT_EQ(wire.due(), std::nullopt);
    wire.send(1s, 'A');
    const Moment due = wire.due().value();
    EXPECT_FALSE(wire.receive(due - 1ns));
    EXPECT_TRUE(wire.receive(due));
    EXPECT_EQ(wire.due(), std::nullopt);
}

} // namespace
} // namespace kel
