// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

#include <memory>
#include <string>

namespace kel {

/// How something with a remote line went.
struct RemoteResult {
    enum class Cause {
        None,        ///< it went well
        NoSuchPlace, ///< the address means nothing, or its host is unknown
        Unreachable, ///< nobody answers, or not as they should
        Refused,     ///< the settings are not taken
    };

    Cause cause = Cause::None;
    std::string text = {}; ///< what is wrong, without a full stop
};

/// An open remote line. Its bytes pass through `handle`, which behaves as a device of this machine does: it never
/// blocks, and its input ends when the line hangs up. Bytes that are under way get a moment to leave at the end.
class RemoteConnection {
public:
    virtual ~RemoteConnection() = default;
    [[nodiscard]] virtual int handle() const noexcept = 0;

    /// Sets the far end's serial line, if the connection can say how. `demanded`: it has to.
    [[nodiscard]] virtual RemoteResult set(const LineParameters& line, bool demanded) = 0;
};

/// How long a connection is waited for: for a time, or until a descriptor becomes readable.
struct Patience {
    Moment time{};
    int ended = -1;
};

/// What the module with the remote lines exports, under the name below: opens what gensio calls `address`.
using OpenRemoteConnection = void (*)(const std::string& address, Patience patience,
                                      std::unique_ptr<RemoteConnection>& connection, RemoteResult& result);
inline constexpr const char* kOpenRemoteConnectionName = "kelOpenRemoteConnection";
inline constexpr const char* kRemoteLineModuleName = "libKELReader81U_remote.so";

} // namespace kel
