// SPDX-License-Identifier: MIT
#include "platform/posix/MarkedInput.h"

#include "platform/posix/ServedLine.h"
#include "platform/posix/TerminalAttributes.h"
#include "tests/platform/posix/PosixTest.h"

#include <fcntl.h>

namespace kel {
namespace {

std::string decoded(const std::vector<std::string>& pieces, std::uint64_t replaced)
{
    MarkedInput input;
    std::string text;
    for (std::string piece : pieces)
        text.append(piece.data(), input.decode(piece.data(), piece.size()));
    EXPECT_EQ(input.replaced(), replaced);
    return text;
}

TEST(MarkedInputTest, PlainCharactersPass)
{
    EXPECT_EQ(decoded({"abc", std::string("\0x", 2)}, 0), std::string("abc\0x", 5));
}

TEST(MarkedInputTest, AMarkIsDecodedHoweverItIsSplit)
{
    const std::string marked("a\xFF\0X\xFF\xFF\xFF\0\xFFz", 10);
    const std::string plain = "a?\xFF?z";
    EXPECT_EQ(decoded({marked}, 2), plain);
    for (std::size_t at = 0; at <= marked.size(); ++at)
        EXPECT_EQ(decoded({marked.substr(0, at), marked.substr(at)}, 2), plain) << at;
    std::vector<std::string> single;
    for (const char byte : marked)
        single.emplace_back(1, byte);
    EXPECT_EQ(decoded(single, 2), plain);
}

TEST(MarkedInputTest, AMarkThatIsNoneLosesNothing)
{
    EXPECT_EQ(decoded({"\xFF"
                       "a"},
                      0),
              "\xFF"
              "a");
}

/// A pseudo-terminal as a device with a wire, whose errors the test counts.
class CountingEnd final : public SystemLine {
public:
    CountingEnd(int handle, std::optional<LineErrors>& counted) : handle_(handle), counted_(counted) {}

    void set(const LineParameters& line) override { parity_ = line.parity != 'N'; }
    [[nodiscard]] bool marksParity() const noexcept override { return parity_; }
    [[nodiscard]] std::optional<LineErrors> countedErrors() const noexcept override { return counted_; }
    void dropInput() noexcept override {}
    [[nodiscard]] int handle() const noexcept override { return handle_; }
    [[nodiscard]] const std::string& name() const noexcept override { return name_; }

private:
    int handle_;
    std::optional<LineErrors>& counted_;
    bool parity_ = false;
    std::string name_ = "Port 1 (a device)";
};

class LineErrorsTest : public test::PosixTest {
protected:
    LineErrorsTest() : device(::open(pty.name().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        TerminalAttributes attributes;
        EXPECT_TRUE(attributes.readFrom(device.number()));
        attributes.makeRaw();
        EXPECT_TRUE(attributes.writeTo(device.number()));
    }

    std::unique_ptr<ServedLine> line(char parity)
    {
        LineParameters parameters;
        parameters.parity = parity;
        return std::make_unique<ServedLine>(std::make_unique<CountingEnd>(device.number(), counted), parameters,
                                            pump());
    }

    std::string received(ServedLine& line, std::size_t count)
    {
        std::string text;
        while (text.size() < count) {
            machine.pump().DoEvents();
            text += line.input().take(0);
        }
        return text;
    }

    Pty pty;
    FileDescriptor device;
    std::optional<LineErrors> counted;
};

TEST_F(LineErrorsTest, AWrongParityBitIsAQuestionMarkAndCounted)
{
    const auto open = line('E');
    ASSERT_EQ(pty.write(std::string("a\xFF\0bc", 5)), 5U);
    EXPECT_EQ(received(*open, 3), "a?c");
    EXPECT_EQ(open->input().errors(), (LineErrors{.parity = 1}));
}

TEST_F(LineErrorsTest, WithoutParityEveryByteIsItself)
{
    const auto open = line('N');
    const std::string bytes("a\xFF\0bc", 5);
    ASSERT_EQ(pty.write(bytes), bytes.size());
    EXPECT_EQ(received(*open, bytes.size()), bytes);
    EXPECT_FALSE(open->input().errors().any());
}

TEST_F(LineErrorsTest, WhatTheSystemCountsHolds)
{
    counted = LineErrors{.parity = 100, .framing = 7, .overrun = 1};
    const auto open = line('N');
    EXPECT_FALSE(open->input().errors().any());
    counted = LineErrors{.parity = 100, .framing = 9, .overrun = 4};
    EXPECT_EQ(open->input().errors(), (LineErrors{.parity = 0, .framing = 2, .overrun = 3}));
}

TEST_F(LineErrorsTest, ALineWithParityPassesEveryByte)
{
    auto other = std::make_unique<Pty>();
    const auto open = control(other->name(), 2);
    open->Settings("9600,E,8,1");
    open->PortOpen(True);
    std::string all;
    for (int code = 0; code < 256; ++code)
        all += static_cast<char>(code);
    ASSERT_EQ(other->write(all), all.size());
    std::string text;
    while (text.size() < all.size()) {
        machine.pump().DoEvents();
        text += open->Input();
    }
    EXPECT_EQ(text, all);
    EXPECT_FALSE(open->lineErrors().any());
}

TEST(LineErrorsTextTest, NamesWhatThereIs)
{
    EXPECT_EQ(lineErrorsText({}), "");
    EXPECT_EQ(lineErrorsText({.parity = 1}), "1 parity error");
    EXPECT_EQ(lineErrorsText({.parity = 2, .framing = 1, .overrun = 3}),
              "2 parity errors, 1 framing error, 3 overruns");
}

} // namespace
} // namespace kel
