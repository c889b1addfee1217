// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>

namespace kel {

// Whoever removes old sheets needs room first: what is removed is written to the log. So a file beside the store, with
// -reserve after its name, takes up room that is there for nothing else.

/// Makes the reserve of a store, unless it is there, somebody is using it, or the disk has little room.
void makeReserve(const std::filesystem::path& store) noexcept;

/// The room of a reserve, as long as it lives; afterwards it is a reserve again, if the disk has that much room by
/// then.
class ReleasedReserve {
public:
    explicit ReleasedReserve(const std::filesystem::path& store) noexcept;
    ~ReleasedReserve();
    ReleasedReserve(const ReleasedReserve&) = delete;
    ReleasedReserve& operator=(const ReleasedReserve&) = delete;

    /// Whether there was one.
    [[nodiscard]] explicit operator bool() const noexcept { return file_.isOpen(); }

private:
    FileDescriptor file_;
};

} // namespace kel
