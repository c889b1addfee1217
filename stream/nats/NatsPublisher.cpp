// SPDX-License-Identifier: MIT
#include "stream/nats/NatsPublisher.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <utility>

namespace kel {

namespace {

constexpr const char* kIdentity = "Nats-Msg-Id";
constexpr const char* kExpectedStream = "Nats-Expected-Stream";
// How long the stream knows a message again. What is sent twice within is kept once.
constexpr std::int64_t kNanosecondsKnown = std::int64_t{10} * 60 * 1'000'000'000;

/// The part before a message's content.
std::size_t headSize(const StreamMessage& message, const std::string& stream)
{
    const std::string head = std::string("NATS/1.0\r\n") + kIdentity + ": " + message.identity + "\r\n" +
                             kExpectedStream + ": " + stream + "\r\n\r\n";
    return head.size();
}

/// Why a message is not taken.
struct Refusal {
    std::string reason;
    int code = 0;

    /// This one alone.
    [[nodiscard]] bool isForSize() const { return code == JSStreamMessageExceedsMaximumErr; }
    /// None as long as there is no room.
    [[nodiscard]] bool isForRoom() const
    {
        return code == JSInsufficientResourcesErr || code == JSAccountResourcesExceededErr ||
               code == JSStorageResourcesExceededErr || code == JSStreamStoreFailedErr;
    }
};

/// Nothing if it is taken. `{"stream":"KELREADER","seq":7}` or `{"error":{"err_code":10077,"description":"…"}}`
std::optional<Refusal> refusalIn(natsMsg* answer)
{
    if (natsMsg_IsNoResponders(answer))
        return Refusal{.reason = "no stream accepts its subject at present"};
    const std::string_view text(natsMsg_GetData(answer), static_cast<std::size_t>(natsMsg_GetDataLength(answer)));
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object() || !(json.contains("error") ? json["error"].is_object() : json.contains("seq")))
        return Refusal{.reason = "the answer cannot be read"};
    if (!json.contains("error"))
        return std::nullopt;
    const auto& error = json["error"];
    return Refusal{.reason = error.value("description", "no reason given"), .code = error.value("err_code", 0)};
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
        connection_.fail("The servers do not report on the stream " + stream_, status);
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
        connection_.fail("The stream " + stream_ + " cannot be created", status);
}

void NatsPublisher::send(const StreamMessage& message, std::int64_t ticket)
{
    const std::size_t size = headSize(message, stream_) + message.content.size();
    const std::int64_t most = natsConnection_GetMaxPayload(connection_.handle());
    if (most > 0 && size > static_cast<std::size_t>(most)) {
        // The server would end the connection.
        tooLarge_.push_back({.ticket = ticket,
                             .refusal = "it has " + std::to_string(size) +
                                        " bytes as a message, but the servers accept at most " + std::to_string(most) +
                                        "; raise max_payload in their configuration"});
        return;
    }
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
    if (status != NATS_OK)
        connection_.fail("A message cannot be sent", status);
}

std::optional<StreamAnswer> NatsPublisher::answer(std::chrono::milliseconds patience)
{
    if (!tooLarge_.empty()) {
        StreamAnswer answer = std::move(tooLarge_.front());
        tooLarge_.pop_front();
        return answer;
    }
    NatsHandle<natsMsg> message;
    const natsStatus status = fill(message, [&](natsMsg** received) {
        return natsSubscription_NextMsg(received, subscription_.get(), patience.count());
    });
    if (status == NATS_TIMEOUT) {
        check();
        return std::nullopt;
    }
    if (status != NATS_OK)
        connection_.fail("The stream does not answer", status);
    const std::optional<Refusal> refusal = refusalIn(message.get());
    if (!refusal)
        return StreamAnswer{.ticket = ticketOf(message.get())};
    if (refusal->isForRoom())
        throw StreamProblem("The stream " + stream_ + " is full (" + refusal->reason +
                            "); make room on its servers' disks, or raise its limits.");
    if (!refusal->isForSize())
        throw StreamProblem("The stream " + stream_ + " accepts no messages: " + refusal->reason + ".");
    return StreamAnswer{.ticket = ticketOf(message.get()),
                        .refusal = "the stream does not accept messages this large; raise its max_msg_size"};
}

std::int64_t NatsPublisher::ticketOf(natsMsg* reply) const
{
    return std::strtoll(natsMsg_GetSubject(reply) + answers_.size(), nullptr, 10);
}

} // namespace kel
