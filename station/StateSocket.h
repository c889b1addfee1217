// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace kel {

/// A socket in the file system that reports a station's state to everybody who may open it: the user who runs the
/// station and the group of its file.
class StateSocket {
public:
    /// host::OperationError if it cannot be made, or if another station answers there. One that nobody serves any more
    /// is replaced.
    explicit StateSocket(std::filesystem::path file);
    /// Takes the file away, if it is still this one.
    ~StateSocket();
    StateSocket(const StateSocket&) = delete;
    StateSocket& operator=(const StateSocket&) = delete;

    /// Can be read while somebody asks.
    [[nodiscard]] int handle() const noexcept { return listening_.number(); }

    /// Gives the next one who asks an answer. Somebody who does not take it within two seconds loses it.
    void answer(const std::string& text) const;

private:
    /// Which file it is, whatever its name.
    struct FileIdentity {
        std::uint64_t device = 0;
        std::uint64_t number = 0;

        friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    };

    [[nodiscard]] FileIdentity identity() const;

    std::filesystem::path file_;
    FileDescriptor listening_;
    FileIdentity bound_;
};

/// Asks the station at a socket. host::OperationError, a sentence, if there is none, or if it does not answer for so
/// long.
[[nodiscard]] std::string askStation(const std::filesystem::path& socket,
                                     std::chrono::milliseconds patience = std::chrono::seconds(10));

} // namespace kel
