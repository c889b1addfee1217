// SPDX-License-Identifier: MIT
#include "stream/nats/NatsConsumer.h"

#include <utility>

namespace kel {

NatsConsumer::NatsConsumer(const StreamAddress& address, const std::string& durable) : connection_(address)
{
    jsSubOptions options;
    jsSubOptions_Init(&options);
    options.Stream = address.stream.c_str();
    options.Config.AckPolicy = js_AckExplicit;
    const std::string subjects = address.subject + ".>";
    jsErrCode code{};
    const natsStatus status = fill(subscription_, [&](natsSubscription** made) {
        return js_PullSubscribe(made, connection_.stream(), subjects.c_str(), durable.c_str(), nullptr, &options,
                                &code);
    });
    if (status == NATS_NOT_FOUND || code == JSStreamNotFoundErr)
        throw StreamProblem("There is no stream " + address.stream + " yet; the first station that sends creates it.");
    if (status != NATS_OK)
        connection_.fail("The stream " + address.stream + " cannot be collected from", status);
}

std::vector<StreamDelivery> NatsConsumer::next(int most, std::chrono::milliseconds patience)
{
    taken_.clear();
    natsMsgList list{};
    jsErrCode code{};
    const natsStatus status = natsSubscription_Fetch(&list, subscription_.get(), most, patience.count(), &code);
    if (status != NATS_OK && status != NATS_TIMEOUT)
        connection_.fail("The stream delivers no messages", status);
    std::vector<StreamDelivery> deliveries;
    for (int i = 0; i < list.Count; ++i) {
        natsMsg* const message = std::exchange(list.Msgs[i], nullptr);
        taken_.emplace_back(message);
        deliveries.push_back(
            {.subject = natsMsg_GetSubject(message),
             .content = {natsMsg_GetData(message), static_cast<std::size_t>(natsMsg_GetDataLength(message))}});
    }
    natsMsgList_Destroy(&list);
    connection_.check();
    return deliveries;
}

void NatsConsumer::acknowledge()
{
    for (const NatsHandle<natsMsg>& message : taken_) {
        if (const natsStatus status = natsMsg_Ack(message.get(), nullptr); status != NATS_OK)
            connection_.fail("A message cannot be acknowledged", status);
    }
    taken_.clear();
}

} // namespace kel
