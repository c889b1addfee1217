// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedLine.h"

#include "platform/ReceivedInput.h"
#include "types/RuntimeFailure.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

// What has been taken is cut off the buffer once it is so much.
constexpr std::size_t kKeptBehind = 65536;

[[noreturn]] void refuse(FailureCode code, Int16 port)
{
    throw RuntimeFailure(code, failureText(code) + " (port " + std::to_string(port) + ")");
}

} // namespace

void SimulatedLine::attach(LineDevice& device)
{
    device_ = &device;
    state_ = PortState::Present;
}

void SimulatedLine::open(Int16 port, const LineParameters& parameters, const std::string& settings)
{
    if (open_)
        refuse(FailureCode::PortAlreadyOpen, port);
    switch (state_) {
    case PortState::Absent: refuse(FailureCode::InvalidPortNumber, port);
    case PortState::Busy: refuse(FailureCode::PortAlreadyOpen, port);
    case PortState::NotPermitted: refuse(FailureCode::HardwareNotAvailable, port);
    case PortState::Present: break;
    }
    if (!device_ || device_->hungUp())
        refuse(FailureCode::InvalidPortNumber, port);
    open_ = true;
    parameters_ = parameters;
    received_.clear();
    taken_ = 0;
    underWay_.clear();
    transmitterFree_ = clock_.now();
    settledAt_ = Moment::min();
    hangUpSeen_ = false;
    record(HostAction::Kind::Open, settings);
    device_->lineOpened(clock_.now(), parameters);
}

void SimulatedLine::close()
{
    if (!open_)
        return;
    // What was sent still goes out, as the system's own driver would see to it.
    if (!underWay_.empty())
        clock_.advanceTo(underWay_.back().arrives);
    settle();
    open_ = false;
    record(HostAction::Kind::Close, {});
    device_->lineClosed(clock_.now());
}

void SimulatedLine::output(std::string_view bytes)
{
    record(HostAction::Kind::Output, std::string(bytes));
    ++busyCount_;
    clock_.progress();
    settle();
    Moment moment = std::max(clock_.now(), transmitterFree_);
    const Moment each = pace_ == HostPace::Wire ? parameters_.characterTime() : Moment{};
    for (const char byte : bytes) {
        moment += each;
        underWay_.push_back({moment, static_cast<Byte>(byte)});
    }
    transmitterFree_ = moment;
    if (pace_ == HostPace::Instant)
        settle();
}

bool SimulatedLine::isFull() const noexcept
{
    return received_.size() - taken_ >= ReceivedInput::kRoom;
}

/// Nothing while the device is held up.
std::optional<Moment> SimulatedLine::nextOfDevice() const
{
    return isFull() ? std::nullopt : device_->nextEvent();
}

void SimulatedLine::settle()
{
    const Moment now = clock_.now();
    settledAt_ = now;
    if (!open_)
        return;
    while (!device_->hungUp()) {
        const std::optional<Moment> device = nextOfDevice();
        if (!underWay_.empty() && underWay_.front().arrives <= now &&
            (!device || underWay_.front().arrives < *device)) {
            const HostByte next = underWay_.front();
            underWay_.pop_front();
            device_->byteFromHost(next.arrives, next.byte);
        } else if (device && *device <= now) {
            if (const std::optional<Byte> byte = device_->takeByte(*device)) {
                received_ += static_cast<char>(*byte);
                ++arrivedCount_;
            } else {
                clock_.idleLook();
            }
        } else {
            return;
        }
    }
    underWay_.clear();
}

std::string SimulatedLine::take(std::size_t most)
{
    std::string bytes = received_.substr(taken_, std::min(most, waiting()));
    if (bytes.empty())
        return bytes;
    clock_.progress();
    if (isFull())
        settledAt_ = Moment::min();
    taken_ += bytes.size();
    ++busyCount_;
    told_ -= std::min(told_, bytes.size());
    if (taken_ == received_.size()) {
        received_.clear();
        taken_ = 0;
    } else if (taken_ >= kKeptBehind) {
        received_.erase(0, taken_);
        taken_ = 0;
    }
    return bytes;
}

bool SimulatedLine::hungUp()
{
    return open_ && (static_cast<void>(waiting()), device_->hungUp());
}

std::optional<Moment> SimulatedLine::nextEvent() const
{
    if (!open_ || device_->hungUp())
        return std::nullopt;
    std::optional<Moment> next = nextOfDevice();
    if (!underWay_.empty() && (!next || underWay_.front().arrives < *next))
        next = underWay_.front().arrives;
    return next;
}

bool SimulatedLine::hasNews()
{
    // The device may have been made to do something without the line's knowledge.
    settle();
    const bool news = open_ && waiting() > 0 && arrivedCount_ != arrivedSeen_;
    const bool hostWasBusy = busyCount_ != busySeen_;
    arrivedSeen_ = arrivedCount_;
    busySeen_ = busyCount_;
    const bool hangUp = open_ && !hangUpSeen_ && device_->hungUp();
    hangUpSeen_ = hangUpSeen_ || hangUp;
    return news || hostWasBusy || hangUp;
}

void SimulatedLine::record(HostAction::Kind kind, std::string text)
{
    if (remembers_)
        actions_.push_back({clock_.now(), kind, std::move(text)});
}

std::string SimulatedLine::sent(std::size_t fromAction) const
{
    std::string bytes;
    for (std::size_t at = fromAction; at < actions_.size(); ++at)
        if (actions_[at].kind == HostAction::Kind::Output)
            bytes += actions_[at].text;
    return bytes;
}

} // namespace kel
