// SPDX-License-Identifier: MIT
#pragma once

#include "stream/nats/NatsConnection.h"

#include <deque>

namespace kel {

/// Puts messages into a stream. Each asks for its acknowledgement at an address of this side's own, whose last part is
/// the ticket.
class NatsPublisher final : public StreamPublisher {
public:
    explicit NatsPublisher(const StreamAddress& address);
    ~NatsPublisher() override { connection_.close(); }
    NatsPublisher(const NatsPublisher&) = delete;
    NatsPublisher& operator=(const NatsPublisher&) = delete;

    void send(const StreamMessage& message, std::int64_t ticket) override;
    std::optional<StreamAnswer> answer(std::chrono::milliseconds patience) override;
    void check() override { connection_.check(); }

private:
    void makeStream(const StreamAddress& address);
    [[nodiscard]] std::int64_t ticketOf(natsMsg* reply) const;

    NatsConnection connection_;
    std::string stream_;
    std::string answers_; ///< what the addresses begin with
    NatsHandle<natsSubscription> subscription_;
    std::deque<StreamAnswer> tooLarge_; ///< what was not sent at all
};

} // namespace kel
