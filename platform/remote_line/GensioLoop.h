// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"

#include <memory>
#include <mutex>
#include <vector>

struct gensio_iod;
struct gensio_os_funcs;

namespace kel {

class GensioBridge;

/// The one thread in which everything of gensio runs, with all bridges of the process. It begins with the first bridge
/// and goes on for good: the library remembers the first handler of its events that it has seen.
class GensioLoop {
public:
    /// std::system_error if it cannot be started.
    [[nodiscard]] static GensioLoop& instance();

    /// Drives a bridge until it is done.
    void add(std::shared_ptr<GensioBridge> bridge);

    /// Has the bridges look what is wanted of them.
    void wake();

    [[nodiscard]] gensio_os_funcs* os() const noexcept { return os_; }

private:
    GensioLoop();
    void run();

    FileDescriptor waker_;
    FileDescriptor wakened_;
    gensio_os_funcs* os_ = nullptr;
    gensio_iod* watch_ = nullptr;
    std::vector<std::shared_ptr<GensioBridge>> bridges_;
    std::mutex mutex_; // over the one below
    std::vector<std::shared_ptr<GensioBridge>> newBridges_;
};

/// Two sockets joined to each other, which do not block.
void connectPair(FileDescriptor& one, FileDescriptor& other);

} // namespace kel
