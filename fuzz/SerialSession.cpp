// SPDX-License-Identifier: MIT
#include "fuzz/Session.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <deque>

namespace kel {

namespace {

using namespace std::chrono_literals;

/// How the bytes of a piece come.
struct Pace {
    Moment delay;
    Moment between;
    bool moreBehind = false;
    bool unplugged = false;
};

constexpr Pace kPaces[] = {
    {5ms, 0ms},  {5ms, 0ms, true},     {700ms, 0ms}, {2s, 20ms, true},
    {5ms, 60ms}, {300ms, 400ms, true}, {15s, 0ms},   {5ms, 0ms, false, true},
};
constexpr std::size_t kLengthInTwoBytes = 31;
constexpr std::size_t kMostBytes = 0x3FFF;

class HostileReader final : public LineDevice {
public:
    explicit HostileReader(Input pieces) : pieces_(pieces) {}

    void lineOpened(Moment now, const LineParameters&) override { answer(now); }
    void lineClosed(Moment) override { bytes_.clear(); }
    void byteFromHost(Moment now, Byte) override
    {
        // What the host sends in one moment is one command.
        if (now != commandAt_)
            answer(now);
        commandAt_ = now;
    }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return bytes_.empty() ? std::nullopt : std::optional(bytes_.front().first);
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        if (bytes_.empty() || bytes_.front().first > now)
            return std::nullopt;
        const Byte byte = bytes_.front().second;
        bytes_.pop_front();
        hungUp_ = hungUp_ || (unplugs_ && bytes_.empty());
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return hungUp_; }
    void hangUp() { hungUp_ = true; }

private:
    void answer(Moment moment)
    {
        for (bool more = true; more && !pieces_.empty();) {
            const Byte head = pieces_.byte();
            const Pace& pace = kPaces[head >> 5];
            std::size_t length = head & 0x1F;
            if (length == kLengthInTwoBytes)
                length = static_cast<std::uint16_t>(pieces_.number16()) & kMostBytes;
            moment += pace.delay;
            for (const Byte byte : pieces_.take(length)) {
                // One line has one order.
                if (!bytes_.empty())
                    moment = std::max(moment, bytes_.back().first);
                bytes_.emplace_back(moment, byte);
                moment += pace.between;
            }
            unplugs_ = unplugs_ || pace.unplugged;
            hungUp_ = hungUp_ || (unplugs_ && bytes_.empty());
            more = pace.moreBehind;
        }
    }

    Input pieces_;
    std::deque<std::pair<Moment, Byte>> bytes_;
    std::optional<Moment> commandAt_;
    bool unplugs_ = false;
    bool hungUp_ = false;
};

} // namespace

void fuzzSerialSession(std::span<const kelReaderType> models, Input input)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    // The settings stand in front, and the session takes them before it opens the line.
    struct Front {
        Byte length;
        Input settings;
    };
    Front front{input.byte(), Input(std::span<const Byte>())};
    front.settings = Input(input.take(front.length));
    HostileReader device(input);
    machine.attach(1, device);
    machine.hostPace(HostPace::Instant);
    // Some waits have no end of their own.
    machine.at(10min, [&] { device.hangUp(); });
    fuzzSession(machine, models, front.settings);
    demand(!machine.line(1).isOpen(), "the line is closed behind the session");
}

} // namespace kel
