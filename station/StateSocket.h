// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>
#include <string>

namespace kel {

/// A socket in the file system that reports a station's state to everybody who may open it: the user who runs the
/// station and the group of its file.
class StateSocket {
public:
    /// host::OperationError if it cannot be created. A socket without a server is replaced.
    explicit StateSocket(std::filesystem::path file);
    /// Removes the file.
    ~StateSocket();
    StateSocket(const StateSocket&) = delete;
    StateSocket& operator=(const StateSocket&) = delete;

    /// Can be read while somebody asks.
    [[nodiscard]] int handle() const noexcept { return listening_.number(); }

    /// Answers the next client. A client that does not read its answer loses it.
    void answer(const std::string& text) const;

private:
    std::filesystem::path file_;
    FileDescriptor listening_;
};

/// Asks the station at a socket. host::OperationError, a sentence, if there is none.
[[nodiscard]] std::string askStation(const std::filesystem::path& socket);

} // namespace kel
