// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>

namespace kel {

/// Notices that a process writes to a store: its files change in their folder.
class StoreWatch {
public:
    /// StoreProblem if the system refuses to watch.
    explicit StoreWatch(const std::filesystem::path& store);

    /// Waits until something may have changed since the last wait, half a second at most, or until `other` can be read,
    /// if it is a handle (0 or above). False if it is `other`.
    [[nodiscard]] bool wait(int other) const;

private:
    FileDescriptor changes_;
};

} // namespace kel
