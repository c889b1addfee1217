// SPDX-License-Identifier: MIT
#include "store/StoreWatch.h"

#include "store/StoreProblem.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <sys/inotify.h>

namespace kel {

// The file changes before the commit can be read, and the commit itself raises no event.
constexpr int kCommitIsSeen = 500;

StoreWatch::StoreWatch(const std::filesystem::path& store) : changes_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
{
    const std::filesystem::path folder = store.has_parent_path() ? store.parent_path() : std::filesystem::path(".");
    if (!changes_.isOpen() ||
        ::inotify_add_watch(changes_.number(), folder.c_str(), IN_MODIFY | IN_CREATE | IN_MOVED_TO) < 0)
        throw StoreProblem("The folder of the store " + store.string() + " cannot be watched: " + std::strerror(errno) +
                           ".");
}

bool StoreWatch::wait(int other) const
{
    pollfd handles[] = {{changes_.number(), POLLIN, 0}, {other, POLLIN, 0}};
    retrying([&] { return ::poll(handles, 2, kCommitIsSeen); });
    std::array<char, 65536> dropped;
    while (::read(changes_.number(), dropped.data(), dropped.size()) > 0) {
    }
    return handles[1].revents == 0;
}

} // namespace kel
