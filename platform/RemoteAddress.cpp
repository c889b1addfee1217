// SPDX-License-Identifier: MIT
#include "platform/RemoteAddress.h"

#include "types/Text.h"

#include <algorithm>
#include <string_view>

namespace kel {

namespace {

struct Scheme {
    std::string_view name;
    std::string_view layers; // above TCP
    bool takesSettings;
};

constexpr Scheme kSchemes[] = {
    {"tcp", "", false},
    {"rfc2217", "telnet(rfc2217=true),", true},
    {"tls", "ssl,", false},
    {"rfc2217s", "telnet(rfc2217=true),ssl,", true},
};

bool onlyOf(std::string_view text, std::string_view more)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [&](char sign) {
        const bool letter = (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z');
        return letter || (sign >= '0' && sign <= '9') || more.find(sign) != std::string_view::npos;
    });
}

/// "host,3000" from "host:3000"; empty if it is none.
std::string hostAndPort(std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos)
        return {};
    std::string_view host = text.substr(0, colon);
    const std::string_view port = text.substr(colon + 1);
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (bracketed)
        host = host.substr(1, host.size() - 2);
    if (!onlyOf(host, bracketed ? ".-_%:" : ".-_") || !onlyOf(port, "-"))
        return {};
    return std::string(host) + "," + std::string(port);
}

} // namespace

std::optional<RemoteAddress> remoteAddress(const std::string& device)
{
    const std::size_t colon = device.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    const std::string_view rest = std::string_view(device).substr(colon + 1);
    const std::string name = device.substr(0, colon);
    if (equalNoCase(name, "gensio"))
        return RemoteAddress{.stream = std::string(rest), .takesSettings = false};
    for (const Scheme& scheme : kSchemes) {
        if (!equalNoCase(name, scheme.name))
            continue;
        const std::string place = hostAndPort(rest);
        return RemoteAddress{.stream = place.empty() ? "" : std::string(scheme.layers) + "tcp," + place,
                             .takesSettings = scheme.takesSettings};
    }
    return std::nullopt;
}

} // namespace kel
