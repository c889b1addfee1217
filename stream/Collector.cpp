// SPDX-License-Identifier: MIT
#include "stream/Collector.h"

#include "formats/JsonValue.h"
#include "store/StoreProblem.h"
#include "store/StoreTrouble.h"
#include "stream/EntryMessage.h"

#include <utility>

namespace kel {

namespace {

// What goes to the disk together.
constexpr int kAtOnce = 256;
// A wait for messages looks up so often whether it is to end.
constexpr std::chrono::milliseconds kCollectorTurn{250};

} // namespace

Collector::Collector(SheetStore& store, StreamAddress address, std::string durable, Pauses pauses, CollectorCalls calls,
                     StreamOpener& opener)
    : store_(store), address_(std::move(address)), durable_(std::move(durable)), pauses_(pauses),
      calls_(std::move(calls)), news_("Collecting from the stream " + address_.stream + ".",
                                      "The stream keeps the sheets meanwhile.", calls_.tell),
      opener_(opener)
{
}

void Collector::run()
{
    do {
        try {
            collectOnce();
        } catch (const StreamProblem& problem) {
            news_.down(problem.what());
        }
    } while (calls_.pause(pauses_.next()));
}

/// One connection, until it is lost or the collector is to end.
void Collector::collectOnce()
{
    const std::unique_ptr<StreamConsumer> stream = opener_.consumer(address_, durable_);
    news_.up();
    while (isGoingOn()) {
        const std::vector<StreamDelivery> deliveries = stream->next(kAtOnce, kCollectorTurn);
        pauses_.reset();
        if (!deliveries.empty() && keep(deliveries))
            stream->acknowledge();
    }
}

/// Whether they are in the store; if not, the collector is to end.
bool Collector::keep(const std::vector<StreamDelivery>& deliveries)
{
    const StoreTrouble trouble{.tell = calls_.tell, .over = calls_.tell, .pause = calls_.pause};
    return untilDone(store_, trouble, pauses_, [&] { store(deliveries); });
}

void Collector::store(const std::vector<StreamDelivery>& deliveries)
{
    std::vector<Entry> entries;
    std::vector<const StreamDelivery*> sources;
    std::vector<UnreadMessage> unread;
    const auto setAside = [&](const StreamDelivery& delivery, const std::string& reason) {
        unread.push_back({.subject = delivery.subject, .reason = reason, .content = delivery.content});
    };
    for (const StreamDelivery& delivery : deliveries) {
        try {
            entries.push_back(entryIn(delivery.content));
            sources.push_back(&delivery);
        } catch (const JsonRefusal& refusal) {
            setAside(delivery, "The message cannot be read: " + validUtf8(refusal.what()) + ".");
        }
    }
    try {
        store_.add(entries);
    } catch (const EntryRefused&) {
        // One of them: the others are as good as ever.
        for (std::size_t i = 0; i < entries.size(); ++i) {
            try {
                store_.add(entries[i]);
            } catch (const EntryRefused& refusal) {
                setAside(*sources[i], refusal.what());
            }
        }
    }
    if (unread.empty())
        return;
    store_.setAside(unread);
    for (const UnreadMessage& message : unread)
        calls_.tell("A message of " + message.subject + " is set aside: " + message.reason);
}

} // namespace kel
