// SPDX-License-Identifier: MIT
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include "platform/ReceivedInput.h"
#include "platform/posix/LineInput.h"
#include "platform/posix/SteadyTime.h"
#include "platform/posix/TerminalAttributes.h"
#include "tests/platform/posix/PosixTest.h"
#include "tests/support/Patience.h"
#include "tests/support/WatchedDevice.h"

#include <atomic>
#include <condition_variable>
#include <fcntl.h>
#include <functional>
#include <mutex>

namespace kel {
namespace {

using namespace std::chrono_literals;

/// A device that does what a test tells it to, and writes down what it is told. Bytes go out one character time apart.
class ToyDevice : public LineDevice {
public:
    std::function<void(ToyDevice&, Byte)> onByte = [](ToyDevice&, Byte) {};
    std::function<void(ToyDevice&)> onOpen = [](ToyDevice&) {};

    void send(const std::string& bytes, Moment delay = {})
    {
        Moment at = std::max(now_ + delay, queue_.empty() ? Moment{} : queue_.back().first);
        for (const char byte : bytes) {
            at += line_.characterTime();
            queue_.emplace_back(at, static_cast<Byte>(byte));
        }
    }
    void hangUp() { hangUp_ = true; }

    void lineOpened(Moment now, const LineParameters& line) override
    {
        tell(now, "opened " + std::to_string(line.baudRate));
        line_ = line;
        onOpen(*this);
    }
    void lineClosed(Moment now) override { tell(now, "closed"); }
    void byteFromHost(Moment now, Byte byte) override
    {
        tell(now, std::string(1, static_cast<char>(byte)));
        onByte(*this, byte);
    }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return queue_.empty() ? std::nullopt : std::optional<Moment>(queue_.front().first);
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        if (queue_.empty() || queue_.front().first > now)
            return std::nullopt;
        const Byte byte = queue_.front().second;
        queue_.pop_front();
        ++taken_;
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return hangUp_ && queue_.empty(); }

    /// Waits until the device has been told something so often.
    [[nodiscard]] std::vector<std::string> told(std::size_t count)
    {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, test::kPatience, [&] { return told_.size() >= count; });
        return told_;
    }
    /// How many bytes have been fetched from the device.
    [[nodiscard]] std::size_t taken() const { return taken_; }
    [[nodiscard]] std::vector<Moment> times()
    {
        const std::lock_guard lock(mutex_);
        return times_;
    }

private:
    void tell(Moment now, const std::string& what)
    {
        const std::lock_guard lock(mutex_);
        EXPECT_GE(now, now_);
        now_ = now;
        told_.push_back(what);
        times_.push_back(now);
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> told_;
    std::vector<Moment> times_;
    Moment now_{};
    LineParameters line_;
    std::deque<std::pair<Moment, Byte>> queue_;
    bool hangUp_ = false;
    std::atomic<std::size_t> taken_{0};
};

using Told = std::vector<std::string>;

class PtyDeviceHostTest : public test::PosixTest {
protected:
    /// Reads a line until so many bytes have come.
    std::string receive(PosixSerialControl& line, std::size_t count)
    {
        std::string bytes;
        const Moment end = steadyTime() + test::kPatience;
        while (bytes.size() < count && steadyTime() < end) {
            machine.pump().DoEvents();
            bytes += line.Input();
        }
        return bytes;
    }

    ToyDevice device;
};

TEST_F(PtyDeviceHostTest, CarriesBytesBothWays)
{
    device.onByte = [](ToyDevice& self, Byte byte) { self.send(std::string(2, static_cast<char>(byte))); };
    PtyDeviceHost host(device);
    host.start();
    const auto line = openControl(host.deviceFile());
    line->Settings("256000,N,8,1");
    line->Output("abc");
    EXPECT_EQ(receive(*line, 6), "aabbcc");
}

TEST_F(PtyDeviceHostTest, TellsTheDeviceHowTheLineIsSetWhenItIsOpened)
{
    PtyDeviceHost host(device);
    host.start();
    const auto line = control(host.deviceFile());
    line->Settings("19200,N,8,2");
    line->PortOpen(True);
    line->Output("x");
    EXPECT_EQ(device.told(2), (Told{"opened 19200", "x"}));
}

TEST_F(PtyDeviceHostTest, ADeviceMaySpeakFirst)
{
    // What comes while a host still opens its line is nobody's, so the device says it again until it has been heard.
    device.onOpen = [](ToyDevice& self) {
        for (int times = 0; times < 100; ++times)
            self.send("ready", times * 500ms);
    };
    PtyDeviceHost host(device);
    host.start();
    const auto line = openControl(host.deviceFile());
    EXPECT_EQ(receive(*line, 5).substr(0, 5), "ready");
}

TEST_F(PtyDeviceHostTest, TellsTheDeviceWhenTheLineIsClosedAndOpenedAgain)
{
    PtyDeviceHost host(device);
    host.start();
    for (const char* byte : {"a", "b"}) {
        const auto line = openControl(host.deviceFile());
        line->Output(byte);
        line->PortOpen(False);
        static_cast<void>(device.told(byte == std::string("a") ? 3 : 6));
    }
    EXPECT_EQ(device.told(6), (Told{"opened 9600", "a", "closed", "opened 9600", "b", "closed"}));
}

TEST_F(PtyDeviceHostTest, TheBytesOfASessionComeBeforeItsEnd)
{
    PtyDeviceHost host(device);
    {
        // All of it is over before the host looks for the first time.
        const auto line = openControl(host.deviceFile());
        line->Settings("256000,N,8,1");
        line->Output("abc");
    }
    host.start();
    const Told told = device.told(5);
    ASSERT_EQ(told.size(), 5U);
    EXPECT_EQ(Told(told.begin() + 1, told.end()), (Told{"a", "b", "c", "closed"}));
}

TEST_F(PtyDeviceHostTest, TheHostsBytesTakeTheirTimeOnTheWire)
{
    PtyDeviceHost host(device);
    host.start();
    const auto line = control(host.deviceFile());
    line->Settings("1200,N,8,1");
    line->PortOpen(True);
    line->Output("abcd");
    ASSERT_EQ(device.told(5).size(), 5U);
    const std::vector<Moment> times = device.times();
    const Moment character = LineParameters{1200}.characterTime();
    EXPECT_GE(times[1] - times[0], character);
    for (std::size_t i = 2; i < times.size(); ++i)
        EXPECT_EQ(times[i] - times[i - 1], character);
}

TEST_F(PtyDeviceHostTest, TheHostsBytesMayAlsoBeThereAtOnce)
{
    PtyDeviceHost host(device, {{}, false});
    host.start();
    const auto line = control(host.deviceFile());
    line->Settings("1200,N,8,1");
    line->PortOpen(True);
    line->Output("abcd");
    ASSERT_EQ(device.told(5).size(), 5U);
    const std::vector<Moment> times = device.times();
    EXPECT_EQ(times[4], times[1]);
}

TEST_F(PtyDeviceHostTest, TheDevicesBytesComeWhenTheyAreDue)
{
    device.onByte = [](ToyDevice& self, Byte) { self.send("abcde"); };
    PtyDeviceHost host(device);
    host.start();
    const auto line = control(host.deviceFile());
    line->Settings("300,N,8,1");
    line->PortOpen(True);
    const Moment begin = steadyTime();
    line->Output("x");
    EXPECT_EQ(receive(*line, 5), "abcde");
    EXPECT_GE(steadyTime() - begin, 6 * LineParameters{300}.characterTime());
}

TEST_F(PtyDeviceHostTest, AHostThatDoesNotReadLosesNothing)
{
    // Five times what the system has room for.
    std::string page;
    for (int i = 0; i < 100000; ++i)
        page += static_cast<char>('a' + i % 23);
    device.onByte = [&](ToyDevice& self, Byte) { self.send(page); };
    PtyDeviceHost host(device);
    host.start();
    const auto line = control(host.deviceFile());
    line->Settings("2000000,N,8,1");
    line->PortOpen(True);
    line->Output("x");
    sleepUntil(steadyTime() + 700ms);
    EXPECT_EQ(receive(*line, page.size()), page);
}

/// A program that opens the line and neither sets it nor drops what it finds there.
class PlainHost {
public:
    explicit PlainHost(const std::string& device)
        : handle_(::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK))
    {
    }

    void send(char byte) const { EXPECT_EQ(::write(handle_.number(), &byte, 1), 1); }

    /// Waits for input, without taking it.
    [[nodiscard]] bool waitForInput() const
    {
        pollfd handle{handle_.number(), POLLIN, 0};
        return ::poll(&handle, 1, static_cast<int>(std::chrono::milliseconds(test::kPatience).count())) > 0;
    }

    [[nodiscard]] std::string receive(std::size_t count) const
    {
        std::string bytes;
        while (bytes.size() < count && waitForInput()) {
            std::array<char, 100> part{};
            const ssize_t got = ::read(handle_.number(), part.data(), part.size());
            bytes.append(part.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
        }
        return bytes;
    }

private:
    FileDescriptor handle_;
};

/// A device that has a megabyte to say, all of it as soon as it is spoken to.
class Flood final : public LineDevice {
public:
    static constexpr std::size_t kSize = 16 * ReceivedInput::kRoom;

    void lineOpened(Moment, const LineParameters&) override {}
    void lineClosed(Moment) override {}
    void byteFromHost(Moment, Byte) override { ++heard_; }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return heard_ > 0 && taken_ < kSize ? std::optional<Moment>(Moment{}) : std::nullopt;
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment) override { return byteAt(taken_++); }
    [[nodiscard]] bool hungUp() const override { return false; }

    [[nodiscard]] std::size_t heard() const { return heard_; }
    [[nodiscard]] std::size_t taken() const { return taken_; }
    [[nodiscard]] static std::string everything()
    {
        std::string bytes;
        for (std::size_t at = 0; at < kSize; ++at)
            bytes += static_cast<char>(byteAt(at));
        return bytes;
    }

private:
    static Byte byteAt(std::size_t place) { return static_cast<Byte>('a' + place % 23); }

    std::atomic<std::size_t> heard_{0};
    std::atomic<std::size_t> taken_{0};
};

TEST_F(PtyDeviceHostTest, AHostThatDoesNotReadHoldsTheDeviceUp)
{
    Flood flood;
    PtyDeviceHost host(flood);
    host.start();
    const PlainHost reading(host.deviceFile());
    reading.send('a');
    EXPECT_TRUE(test::waitUntil([&] { return flood.taken() >= ReceivedInput::kRoom; }));
    // Whoever took all that is due would have it when this is heard; and a device that is held up hears all the same.
    reading.send('b');
    EXPECT_TRUE(test::waitUntil([&] { return flood.heard() == 2; }));
    EXPECT_LT(flood.taken(), Flood::kSize / 4);
    EXPECT_TRUE(reading.receive(Flood::kSize) == Flood::everything()); // a megabyte is no message
}

TEST_F(PtyDeviceHostTest, WhatIsSentWhileTheLineIsClosedIsLost)
{
    device.onByte = [](ToyDevice& self, Byte byte) {
        if (byte == 'a')
            self.send("late", 100ms);
        else
            self.send("new");
    };
    PtyDeviceHost host(device);
    host.start();
    {
        const PlainHost first(host.deviceFile());
        first.send('a');
    }
    EXPECT_EQ(device.told(3).back(), "closed");
    EXPECT_TRUE(test::waitUntil([&] { return device.taken() == 4; }));
    // The host works them off in one go, and it does so before it looks at the line again.
    const PlainHost second(host.deviceFile());
    second.send('b');
    EXPECT_EQ(second.receive(3), "new");
}

TEST_F(PtyDeviceHostTest, WhatTheHostHasNotReadIsLostWhenItCloses)
{
    device.onByte = [](ToyDevice& self, Byte byte) { self.send(byte == 'a' ? "old" : "new"); };
    PtyDeviceHost host(device);
    host.start();
    {
        const PlainHost first(host.deviceFile());
        first.send('a');
        ASSERT_TRUE(first.waitForInput());
    }
    EXPECT_EQ(device.told(3).back(), "closed");
    sleepUntil(steadyTime() + 50ms);
    const PlainHost second(host.deviceFile());
    second.send('b');
    EXPECT_EQ(second.receive(3), "new");
}

TEST_F(PtyDeviceHostTest, ALineOfADeviceThatHangsUpDoesSoWhenItsLastBytesAreRead)
{
    const std::string last(3000, 'z');
    device.onByte = [&](ToyDevice& self, Byte) {
        self.send(last);
        self.hangUp();
    };
    PtyDeviceHost host(device);
    host.start();
    const auto line = control(host.deviceFile());
    line->Settings("2000000,N,8,1");
    line->PortOpen(True);
    line->Output("x");
    EXPECT_EQ(receive(*line, last.size()), last);
    test::expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] {
        for (int turn = 0; turn < 1000; ++turn) {
            machine.pump().DoEvents();
            static_cast<void>(line->InBufferCount());
        }
    });
    host.join();
}

TEST_F(PtyDeviceHostTest, IsStoppedFromOutside)
{
    PtyDeviceHost host(device);
    host.start();
    host.stop();
    host.join();
    EXPECT_TRUE(std::filesystem::exists(host.deviceFile()));
}

TEST_F(PtyDeviceHostTest, AStopBeforeTheRunIsAStop)
{
    PtyDeviceHost host(device);
    host.stop();
    host.run();
    EXPECT_TRUE(device.told(0).empty());
}

TEST_F(PtyDeviceHostTest, WhatTheDeviceThrowsComesOutAtTheEnd)
{
    device.onByte = [](ToyDevice&, Byte) { throw std::runtime_error("unknown command"); };
    PtyDeviceHost host(device);
    host.start();
    const auto line = openControl(host.deviceFile());
    line->Output("x");
    EXPECT_THROW(host.join(), std::runtime_error);
}

TEST_F(PtyDeviceHostTest, ADeviceThatDoesNotDoWhatIsDueIsAFault)
{
    class Stuck final : public ToyDevice {
        [[nodiscard]] std::optional<Moment> nextEvent() const override { return Moment{}; }
    };
    Stuck stuck;
    PtyDeviceHost host(stuck);
    EXPECT_THROW(host.run(), std::logic_error);
}

TEST_F(PtyDeviceHostTest, MakesALinkAndTakesItAway)
{
    const std::filesystem::path link = folder.path() / "reader";
    std::filesystem::create_symlink("/dev/pts/left-behind", link);
    {
        const PtyDeviceHost host(device, {link, true});
        EXPECT_EQ(std::filesystem::read_symlink(link), host.deviceFile());
    }
    EXPECT_FALSE(std::filesystem::is_symlink(std::filesystem::symlink_status(link)));
}

TEST_F(PtyDeviceHostTest, TakesNoFilesPlaceForALink)
{
    const std::filesystem::path file = folder.path() / "file";
    ::close(::open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    EXPECT_THROW(PtyDeviceHost(device, {file, true}), std::system_error);
    EXPECT_TRUE(std::filesystem::is_regular_file(file));
}

TEST(WatchedDevice, HangsUpWhenASessionHasNoEnd)
{
    ToyDevice device;
    test::WatchedDevice watched(device, 5ms);
    watched.lineOpened(10ms, {});
    watched.lineClosed(12ms);
    EXPECT_EQ(watched.nextEvent(), std::nullopt);
    watched.lineOpened(20ms, {});
    EXPECT_EQ(watched.nextEvent(), Moment(25ms));
    EXPECT_EQ(watched.takeByte(24ms), std::nullopt);
    EXPECT_FALSE(watched.hungUp());
    EXPECT_EQ(watched.takeByte(25ms), std::nullopt);
    EXPECT_TRUE(watched.hungUp());
}

TEST(Pty, KeepsItsNameToItselfAfterHangingUp)
{
    Pty gone;
    gone.hangUp();
    const Pty next;
    EXPECT_NE(next.name(), gone.name());
}

} // namespace
} // namespace kel
