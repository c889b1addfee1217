// SPDX-License-Identifier: MIT
#pragma once

#include <nats/nats.h>

#include <memory>

namespace kel {

struct NatsRelease {
    void operator()(natsOptions* options) const noexcept { natsOptions_Destroy(options); }
    void operator()(natsConnection* connection) const noexcept { natsConnection_Destroy(connection); }
    void operator()(natsSubscription* subscription) const noexcept { natsSubscription_Destroy(subscription); }
    void operator()(natsMsg* message) const noexcept { natsMsg_Destroy(message); }
    void operator()(jsCtx* context) const noexcept { jsCtx_Destroy(context); }
    void operator()(jsStreamInfo* info) const noexcept { jsStreamInfo_Destroy(info); }
};

/// Owns an object of the client library.
template <class Object>
using NatsHandle = std::unique_ptr<Object, NatsRelease>;

/// Hands a handle to a function that fills it in.
template <class Object, class Make>
natsStatus fill(NatsHandle<Object>& handle, Make&& make)
{
    Object* made = nullptr;
    const natsStatus status = make(&made);
    handle.reset(made);
    return status;
}

} // namespace kel
