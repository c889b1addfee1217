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

/// Something with a stream does not go: a sentence for a person, with what to try.
class StreamProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where a stream is, and who asks for it. Files may be empty.
struct StreamAddress {
    std::vector<std::string> servers{};  ///< "nats://host:4222" or "tls://host:4222"; any of them will do
    std::filesystem::path authority{};   ///< certificates that the servers' are checked against; else the system's
    std::filesystem::path certificate{}; ///< this side's, and its key
    std::filesystem::path key{};
    std::filesystem::path credentials{}; ///< who this side is, as the servers' administrator gave it out
    std::string client{};                ///< what the servers' logs call this side
    std::string stream = "KELREADER";
    std::string subject = "kelreader"; ///< what the subjects of all messages begin with
    int replicas = 1;                  ///< how many servers keep a stream that is made
};

/// What goes into a stream.
struct StreamMessage {
    std::string subject{};
    std::string identity{}; ///< by which the stream knows it when it comes again
    std::string content{};
};

/// What a stream says to a message.
struct StreamAnswer {
    std::int64_t ticket = 0;
    std::string refusal{}; ///< empty if the stream has it; else why it takes this one not, and others: half a sentence
};

/// A connection on which messages go into a stream, from one thread. It lives once: a StreamProblem from any of its
/// functions is its end, and what was not acknowledged has to be sent again on another one.
class StreamPublisher {
public:
    virtual ~StreamPublisher() = default;

    /// Sends a message; `ticket` comes back with the stream's answer.
    virtual void send(const StreamMessage& message, std::int64_t ticket) = 0;

    /// Waits for the stream to answer a message; nothing if that takes longer.
    [[nodiscard]] virtual std::optional<StreamAnswer> answer(std::chrono::milliseconds patience) = 0;

    /// StreamProblem if the connection is lost.
    virtual void check() = 0;
};

/// A message that a stream hands out.
struct StreamDelivery {
    std::string subject{};
    std::string content{};
};

/// A connection on which a stream hands out messages, each until it is acknowledged. It lives once, as a publisher.
class StreamConsumer {
public:
    virtual ~StreamConsumer() = default;

    /// Waits for messages, and takes no more than so many.
    [[nodiscard]] virtual std::vector<StreamDelivery> next(int most, std::chrono::milliseconds patience) = 0;

    /// Acknowledges all that `next` gave last.
    virtual void acknowledge() = 0;
};

/// Opens connections to streams. StreamProblem if that fails.
class StreamOpener {
public:
    virtual ~StreamOpener() = default;

    /// Makes the stream if there is none.
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
