// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace kel {

/// Where a remote line is.
struct RemoteAddress {
    std::string stream;         ///< as gensio says it: "telnet(rfc2217),tcp,host,3000"; empty if the text is none
    bool takesSettings = false; ///< the far end has to take the settings of the line
};

/// The address in a device's text; nothing for a device of this machine.
///
///     tcp:HOST:PORT        bytes as they are; the far end's line is set by whoever owns it
///     rfc2217:HOST:PORT    the same with the settings of the line
///     tls:HOST:PORT        each of the two, encrypted; the server's certificate has to be one that the system trusts
///     rfc2217s:HOST:PORT
///     gensio:STRING        whatever gensio understands
///
/// A host with colons stands in brackets: "tcp:[::1]:3000".
[[nodiscard]] std::optional<RemoteAddress> remoteAddress(const std::string& device);

} // namespace kel
