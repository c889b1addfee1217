// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace kel {

/// A failure of a stream: a sentence for a person, with what to try.
class StreamProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The address of a stream, and the identity of the client. Files may be empty.
struct StreamAddress {
    std::vector<std::string> servers{};  ///< "nats://host:4222" or "tls://host:4222"; any one is enough
    std::filesystem::path authority{};   ///< certificates that the servers' are checked against; else the system's
    std::filesystem::path certificate{}; ///< this side's, and its key
    std::filesystem::path key{};
    std::filesystem::path credentials{}; ///< the identity of this side, from the servers' administrator
    std::string client{};                ///< what the servers' logs call this side
    std::string stream = "KELREADER";
    std::string subject = "kelreader"; ///< what the subjects of all messages begin with
    int replicas = 1;                  ///< how many servers keep a new stream
};

/// A message to a stream.
struct StreamMessage {
    std::string subject{};
    std::string identity{}; ///< by which the stream knows it when it comes again
    std::string content{};
};

/// A stream's answer to a message.
struct StreamAnswer {
    std::int64_t ticket = 0;
    std::string refusal{}; ///< empty if the stream has it; else why it refuses this one but not others: half a sentence
};

/// A connection to send messages to a stream, for one thread. It is not used again after a failure: a StreamProblem
/// from any of its functions is its end, and what was not acknowledged has to be sent again on another one.
class StreamPublisher {
public:
    virtual ~StreamPublisher() = default;

    /// Sends a message; `ticket` comes back with the stream's answer.
    virtual void send(const StreamMessage& message, std::int64_t ticket) = 0;

    /// Waits for the stream to answer a message; nullopt if that takes longer.
    [[nodiscard]] virtual std::optional<StreamAnswer> answer(std::chrono::milliseconds patience) = 0;

    /// StreamProblem if the connection is lost.
    virtual void check() = 0;
};

/// A message from a stream.
struct StreamDelivery {
    std::string subject{};
    std::string content{};
};

/// A connection on which a stream sends messages, each until it is acknowledged. As a publisher, it is not used again
/// after a failure.
class StreamConsumer {
public:
    virtual ~StreamConsumer() = default;

    /// Waits for messages, and returns at most this many.
    [[nodiscard]] virtual std::vector<StreamDelivery> next(int most, std::chrono::milliseconds patience) = 0;

    /// Acknowledges all messages that `next` returned last.
    virtual void acknowledge() = 0;
};

/// Opens connections to streams. StreamProblem if that fails.
class StreamOpener {
public:
    virtual ~StreamOpener() = default;

    /// Creates the stream if there is none.
    [[nodiscard]] virtual std::unique_ptr<StreamPublisher> publisher(const StreamAddress& address) = 0;

    /// The stream remembers by the name `durable` what this consumer has acknowledged.
    [[nodiscard]] virtual std::unique_ptr<StreamConsumer> consumer(const StreamAddress& address,
                                                                   const std::string& durable) = 0;
};

/// What the module with the streams exports, under the name below.
using MakeStreamOpener = StreamOpener* (*)();
inline constexpr const char* kMakeStreamOpenerName = "kelMakeStreamOpener";
inline constexpr const char* kStreamModuleName = "libKELReader81U_stream.so";

/// The opener of the module, which is loaded at the first call. StreamProblem if it cannot be loaded.
[[nodiscard]] StreamOpener& streamOpener();

} // namespace kel
