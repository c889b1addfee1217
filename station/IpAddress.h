// SPDX-License-Identifier: MIT
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <string>

namespace kel {

/// Whether a text is an IP address.
[[nodiscard]] inline bool isIpAddress(const std::string& text)
{
    in6_addr address{};
    return ::inet_pton(AF_INET, text.c_str(), &address) == 1 || ::inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

/// Whether this machine alone reaches an IP address.
[[nodiscard]] inline bool isLoopback(const std::string& address)
{
    in6_addr six{};
    if (::inet_pton(AF_INET6, address.c_str(), &six) == 1)
        return IN6_IS_ADDR_LOOPBACK(&six);
    return address.starts_with("127.");
}

} // namespace kel
