// SPDX-License-Identifier: MIT
#include "stream/nats/NatsPublisher.h"

#include <nlohmann/json.hpp>

#include <cstdlib>

namespace kel {

namespace {

constexpr const char* kIdentity = "Nats-Msg-Id";
constexpr const char* kExpectedStream = "Nats-Expected-Stream";
// How long the stream knows a message again. What is sent twice within is kept once.
constexpr std::int64_t kNanosecondsKnown = std::int64_t{10} * 60 * 1'000'000'000;

/// What refuses a message, or an empty text. `{"stream":"KELREADER","seq":7}` or `{"error":{"description":"…"}}`
std::string refusalIn(natsMsg* answer)
{
    if (natsMsg_IsNoResponders(answer))
        return "no stream takes its subject now";
    const std::string_view text(natsMsg_GetData(answer), static_cast<std::size_t>(natsMsg_GetDataLength(answer)));
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object())
        return "the answer cannot be read";
    if (json.contains("error"))
        return json["error"].value("description", "for no reason that was given");
    return json.contains("seq") ? std::string() : "the answer cannot be read";
}

} // namespace

NatsPublisher::NatsPublisher(const StreamAddress& address) : connection_(address), stream_(address.stream)
{
    makeStream(address);
    char* inbox = nullptr;
    if (const natsStatus status = natsInbox_Create(&inbox); status != NATS_OK)
        connection_.fail("The stream's answers cannot be received", status);
    answers_ = std::string(inbox) + ".";
    natsInbox_Destroy(inbox);
    const natsStatus status = fill(subscription_, [&](natsSubscription** made) {
        return natsConnection_SubscribeSync(made, connection_.handle(), (answers_ + "*").c_str());
    });
    if (status != NATS_OK)
        connection_.fail("The stream's answers cannot be received", status);
}

void NatsPublisher::makeStream(const StreamAddress& address)
{
    NatsHandle<jsStreamInfo> info;
    jsErrCode code{};
    natsStatus status = fill(info, [&](jsStreamInfo** made) {
        return js_GetStreamInfo(made, connection_.stream(), stream_.c_str(), nullptr, &code);
    });
    if (status == NATS_OK)
        return;
    if (status != NATS_NOT_FOUND)
        connection_.fail("The servers say nothing of the stream " + stream_, status);
    jsStreamConfig config;
    jsStreamConfig_Init(&config);
    const std::string subjects = address.subject + ".>";
    const char* const list[] = {subjects.c_str()};
    config.Name = stream_.c_str();
    config.Description = "Sheets of optical mark readers";
    config.Subjects = const_cast<const char**>(list);
    config.SubjectsLen = 1;
    config.Storage = js_FileStorage;
    config.Discard = js_DiscardNew; // a full stream takes no more; what it has is not collected yet
    config.Replicas = address.replicas;
    config.Duplicates = kNanosecondsKnown;
    status = fill(
        info, [&](jsStreamInfo** made) { return js_AddStream(made, connection_.stream(), &config, nullptr, &code); });
    if (status != NATS_OK && code != JSStreamNameExistErr)
        connection_.fail("The stream " + stream_ + " cannot be made", status);
}

void NatsPublisher::send(const StreamMessage& message, std::int64_t ticket)
{
    NatsHandle<natsMsg> made;
    const std::string answer = answers_ + std::to_string(ticket);
    natsStatus status = fill(made, [&](natsMsg** target) {
        return natsMsg_Create(target, message.subject.c_str(), answer.c_str(), message.content.data(),
                              static_cast<int>(message.content.size()));
    });
    if (status == NATS_OK)
        status = natsMsgHeader_Set(made.get(), kIdentity, message.identity.c_str());
    if (status == NATS_OK)
        status = natsMsgHeader_Set(made.get(), kExpectedStream, stream_.c_str());
    if (status == NATS_OK)
        status = natsConnection_PublishMsg(connection_.handle(), made.get());
    if (status == NATS_MAX_PAYLOAD)
        throw StreamProblem("The servers take no message as large as the one that is to be sent next, " +
                            std::to_string(message.content.size()) +
                            " bytes; raise max_payload in their configuration.");
    if (status != NATS_OK)
        connection_.fail("A message cannot be sent", status);
}

std::optional<std::int64_t> NatsPublisher::acknowledged(std::chrono::milliseconds patience)
{
    NatsHandle<natsMsg> answer;
    const natsStatus status = fill(answer, [&](natsMsg** received) {
        return natsSubscription_NextMsg(received, subscription_.get(), patience.count());
    });
    if (status == NATS_TIMEOUT) {
        check();
        return std::nullopt;
    }
    if (status != NATS_OK)
        connection_.fail("The stream does not answer", status);
    if (const std::string refusal = refusalIn(answer.get()); !refusal.empty())
        throw StreamProblem("The stream " + stream_ + " takes no message: " + refusal + ".");
    return ticketOf(answer.get());
}

std::int64_t NatsPublisher::ticketOf(natsMsg* reply) const
{
    return std::strtoll(natsMsg_GetSubject(reply) + answers_.size(), nullptr, 10);
}

} // namespace kel
