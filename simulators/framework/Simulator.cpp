// SPDX-License-Identifier: MIT
#include "simulators/framework/Simulator.h"

#include "platform/LineSettings.h"
#include "platform/ReceivedInput.h"
#include "simulators/framework/LatestEntries.h"
#include "simulators/framework/SpoiltSheet.h"
#include "types/Text.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace kel {

namespace {

// How far a sheet's reply gets before the reader goes off.
constexpr Int32 kSentWhenSwitchedOff = 5;

[[noreturn]] void refuseSetting(const std::string& name, const std::string& value, const std::string& what)
{
    throw std::invalid_argument("setting " + name + "=" + value + ": " + what);
}

} // namespace

Simulator::Simulator(SimulatorOptions options)
    : options_(std::move(options)), feeder_(std::move(options_.sheets)), outputFaults_(options_.faults),
      siteFaults_(options_.siteFaults), usualLine_(parseLineSettings(options_.usualLine)),
      cable_(siteFaults_, usualLine_), leftoverDue_(siteFaults_.has(SiteFault::Kind::LeftInMode))
{
    if (const std::string demanded = setting("line", ""); !demanded.empty()) {
        try {
            demandedLine_ = lineSettingsText(parseLineSettings(demanded));
        } catch (const RuntimeFailure&) {
            refuseSetting("line", demanded, "is not a line setting such as 9600,N,8,1");
        }
    }
}

void Simulator::lineOpened(Moment now, const LineParameters& line)
{
    // What the reader does by itself has gone on after the closed line; what it sent was lost.
    while (!actions_.empty() && actions_.front().at <= now)
        runFirstAction();
    open_ = true;
    now_ = now;
    line_ = line;
    if (!cable_.isStraight()) {
        if (!options_.wireShows) {
            line_.parity = usualLine_.parity;
            line_.dataBits = usualLine_.dataBits;
        }
        cable_.opened(line_);
        line_ = cable_.readerLine();
    }
    queue_.clear();
    transmitterFree_ = now;
    if (!demandedLine_.empty() && lineSettingsText(line) != demandedLine_)
        fault("the line is set to " + lineSettingsText(line) + ", and the reader to " + demandedLine_);
    onOpen();
    if (std::exchange(leftoverDue_, false))
        onLeftover();
}

void Simulator::lineClosed(Moment now)
{
    now_ = std::max(now_, now);
    open_ = false;
    queue_.clear();
    onClose();
}

void Simulator::byteFromHost(Moment now, Byte byte)
{
    if (hungUp_)
        return;
    now_ = std::max(now_, now);
    if (cable_.isStraight()) {
        onByte(byte);
        return;
    }
    cable_.fromHost(now_, byte);
    hear();
}

/// Takes what has arrived from the host.
void Simulator::hear()
{
    while (const std::optional<Byte> byte = cable_.forReader(now_))
        onByte(*byte);
}

std::optional<Moment> Simulator::nextEvent() const
{
    if (hungUp_)
        return std::nullopt;
    const std::optional<Moment> own = nextOwnEvent();
    const std::optional<Moment> cable = open_ ? cable_.nextEvent() : std::nullopt;
    return own && cable ? std::min(*own, *cable) : own ? own : cable;
}

/// Of the reader alone, without the cable. One that is full holds the reader up, and what waits to be sent holds up
/// what it does by itself: a reader that sends unasked would otherwise feed its whole pile ahead of a slow line.
std::optional<Moment> Simulator::nextOwnEvent() const
{
    if (open_ && cable_.isFull())
        return std::nullopt;
    std::optional<Moment> next = hangUpAt_;
    if (!queue_.empty() && (!next || queue_.front().at < *next))
        next = queue_.front().at;
    if (queue_.size() < ReceivedInput::kRoom && !actions_.empty() && (!next || actions_.front().at < *next))
        next = actions_.front().at;
    return next;
}

std::optional<Byte> Simulator::takeByte(Moment now)
{
    while (!hungUp_) {
        const std::optional<Moment> all = nextEvent();
        if (!all || *all > now)
            return std::nullopt;
        const std::optional<Moment> next = nextOwnEvent();
        if (!next || *next > *all) {
            now_ = std::max(now_, *all);
            hear();
            if (const std::optional<Byte> byte = cable_.forHost(now_))
                return byte;
            continue;
        }
        if (!queue_.empty() && queue_.front().at == *next) {
            const QueuedByte first = queue_.front();
            queue_.pop_front();
            now_ = std::max(now_, first.at);
            if (cable_.isStraight())
                return first.byte;
            cable_.fromReader(now_, first.byte);
            continue;
        }
        if (hangUpAt_ == next)
            unplug();
        else
            runFirstAction();
    }
    return std::nullopt;
}

void Simulator::unplug()
{
    hungUp_ = true;
    dropPending();
}

std::vector<std::string> Simulator::unknownSettings() const
{
    std::vector<std::string> unknown;
    for (const auto& [name, value] : options_.settings)
        if (!knownSettings_.contains(name))
            unknown.push_back(name);
    return unknown;
}

void Simulator::putSheet(SimulatedSheet sheet)
{
    feeder_.put(std::move(sheet));
    onSheetPut();
}

void Simulator::send(std::string_view bytes)
{
    if (!open_ || hungUp_ || hangUpAt_)
        return;
    const Moment each = options_.rate == Rate::Wire ? line_.characterTime() : Moment{};
    Moment moment = std::max(now_, transmitterFree_);
    if (outputFaults_.none()) {
        for (const char byte : bytes)
            queue_.push_back({moment += each, static_cast<Byte>(byte)});
    } else {
        moment = sendFaultily(bytes, moment, each);
    }
    transmitterFree_ = moment;
}

void Simulator::sendInLumps(std::string_view bytes, Int32 lump)
{
    const std::size_t before = queue_.size();
    send(bytes);
    if (!outputFaults_.none())
        return;
    const std::size_t size = lump > 0 ? static_cast<std::size_t>(lump) : std::max<std::size_t>(bytes.size(), 1);
    for (std::size_t first = before; first < queue_.size(); first += size) {
        const std::size_t end = std::min(first + size, queue_.size());
        for (std::size_t place = first; place < end; ++place)
            queue_[place].at = queue_[end - 1].at;
    }
}

Moment Simulator::sendFaultily(std::string_view bytes, Moment moment, Moment each)
{
    moment += outputFaults_.beforeReply(bytes.size());
    for (const char byte : bytes) {
        const OutputFaults::Fate fate = outputFaults_.next(static_cast<Byte>(byte));
        moment += fate.pause + each;
        if (fate.unplugged) {
            hangUpAt_ = moment;
            break;
        }
        if (!fate.lost)
            queue_.push_back({moment, fate.byte});
    }
    return moment;
}

std::string Simulator::asStatus(std::string usual) const
{
    if (usual.empty())
        return usual;
    if (siteFaults_.has(SiteFault::Kind::StatusLonger))
        usual += usual.back();
    else if (siteFaults_.has(SiteFault::Kind::StatusShorter))
        usual.pop_back();
    return usual;
}

void Simulator::sendAfter(Moment delay, std::string bytes)
{
    schedule(delay, [this, reply = std::move(bytes)] { send(reply); });
}

void Simulator::schedule(Moment delay, std::function<void()> action)
{
    const Moment moment = now_ + delay;
    const auto behind = std::ranges::upper_bound(actions_, moment, {}, &Action::at);
    actions_.insert(behind, {moment, std::move(action)});
}

void Simulator::dropPending()
{
    queue_.clear();
    actions_.clear();
    transmitterFree_ = now_;
}

void Simulator::runFirstAction()
{
    const Action first = std::move(actions_.front());
    actions_.erase(actions_.begin());
    now_ = std::max(now_, first.at);
    first.run();
}

void Simulator::fault(std::string what)
{
    if (siteFaults_.excuseHost())
        return;
    if (errorListener_)
        errorListener_(what);
    addKeepingFirst(errors_, std::move(what));
}

Simulator::Feed Simulator::nextFeed() const
{
    const Int32 next = sheetNumber_ + 1;
    if (feeder_.empty() || outputFaults_.atSheet(Fault::Kind::Empty, next) ||
        siteFaults_.has(SiteFault::Kind::EmptyFeeder))
        return Feed::Empty;
    return outputFaults_.atSheet(Fault::Kind::Jam, next) || isAt(SiteFault::Kind::Jam, next) ? Feed::Jam : Feed::Sheet;
}

bool Simulator::isAt(SiteFault::Kind kind, Int32 sheet) const
{
    return siteFaults_.value(kind, 1) == sheet;
}

Simulator::Feed Simulator::feed()
{
    const Feed result = nextFeed();
    if (result != Feed::Empty && outputFaults_.atSheet(Fault::Kind::Unplug, sheetNumber_ + 1)) {
        unplug();
        return Feed::Empty;
    }
    if (result == Feed::Empty) {
        record({SheetEvent::Empty, 0, {}, 0, 0});
        return result;
    }
    sheet_ = feeder_.take();
    ++sheetNumber_;
    if (isAt(SiteFault::Kind::DoubleFeed, sheetNumber_) && !feeder_.empty())
        sheet_ = together(sheet_, feeder_.take());
    spoilt(siteFaults_, sheetNumber_, sheet_);
    if (isAt(SiteFault::Kind::SwitchedOff, sheetNumber_))
        cable_.cutAfter(kSentWhenSwitchedOff);
    outputFaults_.sheetFed(sheetNumber_);
    note(result == Feed::Jam ? SheetEvent::Jammed : SheetEvent::Fed);
    return result;
}

void Simulator::note(SheetEvent event, std::string text, Int32 line, Int32 position)
{
    record({event, sheetNumber_, std::move(text), line, position});
}

void Simulator::record(SheetRecord entry)
{
    if (logListener_)
        logListener_(entry);
    addKeepingLatest(log_, std::move(entry));
}

std::string Simulator::setting(const std::string& name, const std::string& fallback)
{
    knownSettings_.insert(name);
    const auto found = options_.settings.find(name);
    return found == options_.settings.end() ? fallback : found->second;
}

Int32 Simulator::settingNumber(const std::string& name, Int32 fallback)
{
    const std::string text = setting(name, "");
    if (text.empty())
        return fallback;
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* begin = text.data() + (hexadecimal ? 2 : 0);
    const char* end = text.data() + text.size();
    Int32 value = 0;
    const auto [stopped, error] = std::from_chars(begin, end, value, hexadecimal ? 16 : 10);
    if (error != std::errc{} || stopped != end)
        refuseSetting(name, text, "is not a whole number");
    return value;
}

bool Simulator::settingFlag(const std::string& name, bool fallback)
{
    const std::string text = lowerCase(setting(name, fallback ? "true" : "false"));
    if (text == "true" || text == "1" || text == "yes")
        return true;
    if (text == "false" || text == "0" || text == "no")
        return false;
    refuseSetting(name, text, "is neither true nor false");
}

void Simulator::demandLine(const std::string& settings)
{
    if (demandedLine_.empty())
        demandedLine_ = lineSettingsText(parseLineSettings(settings));
}

std::string hex(Byte byte)
{
    constexpr char digits[] = "0123456789ABCDEF";
    return {digits[byte >> 4], digits[byte & 15]};
}

bool isDigits(std::string_view text, std::size_t count)
{
    return text.size() == count && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace kel
