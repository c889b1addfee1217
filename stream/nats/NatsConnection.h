// SPDX-License-Identifier: MIT
#pragma once

#include "stream/StreamLink.h"
#include "stream/nats/NatsHandles.h"

#include <string>

namespace kel {

/// What the library says of its last failure in this thread, without a full stop.
[[nodiscard]] std::string natsReason(natsStatus status);

/// A connection to one of a stream's servers. When it is lost it is lost for good: who uses it opens another.
class NatsConnection {
public:
    explicit NatsConnection(const StreamAddress& address);
    ~NatsConnection() { close(); }
    NatsConnection(const NatsConnection&) = delete;
    NatsConnection& operator=(const NatsConnection&) = delete;

    [[nodiscard]] natsConnection* handle() const noexcept { return connection_.get(); }
    [[nodiscard]] jsCtx* stream() const noexcept { return context_.get(); }

    /// Ends it, and the library's threads for it. Who has a subscription does so first: a message that comes while the
    /// library gives a subscription up may find it gone. What was written gets a moment to leave.
    void close() noexcept;

    /// StreamProblem if it is lost.
    void check() const;
    /// The same for the status of a call that failed.
    [[noreturn]] void fail(const std::string& what, natsStatus status) const;

private:
    natsStatus open(const StreamAddress& address, const std::string& server);

    std::string server_;
    NatsHandle<natsConnection> connection_;
    NatsHandle<jsCtx> context_;
};

} // namespace kel
