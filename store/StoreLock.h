// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>
#include <string>

namespace kel {

/// The right to write to a store, which one process has at a time: a lock on the file beside it. It ends with the
/// process, however that ends.
class StoreLock {
public:
    /// StoreProblem if another one has it, or if the file cannot be created; `owner` is the name that others see in
    /// messages.
    StoreLock(const std::filesystem::path& store, const std::string& owner);

private:
    FileDescriptor file_;
};

} // namespace kel
