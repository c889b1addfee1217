// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"

#include <cstddef>
#include <functional>

namespace kel {

/// How many names deep a key of the registry may lie; a store refuses to write below that.
inline constexpr std::size_t kDeepestKey = 512;

/// What a registry is besides if it can keep or undo several writes as one.
class RegistryTransaction {
public:
    virtual ~RegistryTransaction() = default;

    /// Runs a body that writes into a hive, and answers whether it answered true and all of it came to stay. If not,
    /// the hive is as it was.
    virtual bool together(kelReaderRegistryKey hive, const std::function<bool()>& body) = 0;
};

} // namespace kel
