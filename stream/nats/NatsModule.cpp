// SPDX-License-Identifier: MIT
#include "stream/nats/NatsConsumer.h"
#include "stream/nats/NatsPublisher.h"

namespace kel {

namespace {

class NatsOpener final : public StreamOpener {
public:
    std::unique_ptr<StreamPublisher> publisher(const StreamAddress& address) override
    {
        return std::make_unique<NatsPublisher>(address);
    }

    std::unique_ptr<StreamConsumer> consumer(const StreamAddress& address, const std::string& durable) override
    {
        return std::make_unique<NatsConsumer>(address, durable);
    }
};

} // namespace

} // namespace kel

extern "C" __attribute__((visibility("default"))) kel::StreamOpener* kelMakeStreamOpener()
{
    static kel::NatsOpener opener;
    return &opener;
}
