// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/Sqlite.h"

#include <cstdint>
#include <filesystem>

namespace kel {

/// The version of the tables that this program makes and reads; a store has its own as `user_version`.
inline constexpr std::int64_t kStoreVersion = 3;

/// Creates the tables of a new store, or updates those of an older one to this version, in one transaction.
/// StoreProblem for a store of a newer version and for a database that is something else.
void prepareStore(SqliteDatabase& database, const std::filesystem::path& file);

/// The same checks without a change. StoreProblem for a store of an older version, too.
void checkStore(SqliteDatabase& database, const std::filesystem::path& file);

} // namespace kel
