// SPDX-License-Identifier: MIT
#include "simulators/ezdata/CommandFrames.h"

#include <string_view>

namespace kel {

namespace {

using Kind = HostCommand::Kind;

constexpr std::string_view kFrameStart = "\x12\x1B";
constexpr std::string_view kFrameEnd = "\x12"
                                       "E";
constexpr std::string_view kLocateProbe = "\x12"
                                          "R7777\x12"
                                          "I00\x12"
                                          "E";
constexpr std::string_view kJoinedProbe = "\x12"
                                          "R7777I00E";
constexpr char kSetUpStart = '\x1B';
constexpr char kSetUpEnd = '\r';
constexpr std::size_t kLongest = 64;

} // namespace

std::optional<HostCommand> CommandFrames::take(Byte byte)
{
    begun_ += static_cast<char>(byte);
    std::optional<HostCommand> command = finished();
    if (command)
        begun_.clear();
    return command;
}

std::optional<HostCommand> CommandFrames::finished() const
{
    if (begun_.size() > kLongest)
        return HostCommand{Kind::Broken, begun_};
    if (begun_.front() == kSetUpStart) {
        if (begun_.back() != kSetUpEnd)
            return std::nullopt;
        return HostCommand{Kind::SetUp, begun_.substr(1, begun_.size() - 2)};
    }
    if (begun_.starts_with(kFrameStart)) {
        if (!begun_.ends_with(kFrameEnd))
            return std::nullopt;
        const std::size_t around = kFrameStart.size() + kFrameEnd.size();
        return HostCommand{Kind::Framed, begun_.substr(kFrameStart.size(), begun_.size() - around)};
    }
    if (begun_ == kLocateProbe)
        return HostCommand{Kind::LocateProbe, {}};
    if (begun_ == kJoinedProbe)
        return HostCommand{Kind::JoinedProbe, {}};
    if (kLocateProbe.starts_with(begun_) || kJoinedProbe.starts_with(begun_) || kFrameStart.starts_with(begun_))
        return std::nullopt;
    return HostCommand{begun_.size() == 1 ? Kind::Single : Kind::Broken, begun_};
}

} // namespace kel
