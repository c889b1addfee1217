// SPDX-License-Identifier: MIT
#pragma once

#include "stream/nats/NatsConnection.h"

#include <vector>

namespace kel {

/// Takes messages from a stream, as a durable consumer that asks for them.
class NatsConsumer final : public StreamConsumer {
public:
    NatsConsumer(const StreamAddress& address, const std::string& durable);
    /// The stream goes on remembering what was acknowledged.
    ~NatsConsumer() override { connection_.close(); }
    NatsConsumer(const NatsConsumer&) = delete;
    NatsConsumer& operator=(const NatsConsumer&) = delete;

    std::vector<StreamDelivery> next(int most, std::chrono::milliseconds patience) override;
    void acknowledge() override;

private:
    NatsConnection connection_;
    NatsHandle<natsSubscription> subscription_;
    std::vector<NatsHandle<natsMsg>> taken_;
};

} // namespace kel
