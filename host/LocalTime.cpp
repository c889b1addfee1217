// SPDX-License-Identifier: MIT
#include "host/LocalTime.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace kel::host {

namespace {

std::tm localParts(std::time_t time)
{
    std::tm parts{};
#if defined(_WIN32)
    localtime_s(&parts, &time);
#else
    localtime_r(&time, &parts);
#endif
    return parts;
}

std::tm utcParts(std::time_t time)
{
    std::tm parts{};
#if defined(_WIN32)
    gmtime_s(&parts, &time);
#else
    gmtime_r(&time, &parts);
#endif
    return parts;
}

} // namespace

std::string localTime(const char* form)
{
    const std::tm local = localParts(std::time(nullptr));
    std::array<char, 64> text;
    return {text.data(), std::strftime(text.data(), text.size(), form, &local)};
}

std::string utcOffset()
{
    constexpr int kMinute = 60;
    const std::time_t now = std::time(nullptr);
    std::tm utc = utcParts(now);
    utc.tm_isdst = localParts(now).tm_isdst;
    const int minutes = static_cast<int>(std::difftime(now, std::mktime(&utc))) / kMinute;
    std::array<char, sizeof "+0100"> text;
    std::snprintf(text.data(), text.size(), "%c%02d%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / kMinute % 100,
                  std::abs(minutes) % kMinute);
    return text.data();
}

} // namespace kel::host
