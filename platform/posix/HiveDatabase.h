// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"
#include "platform/posix/RegistryFolders.h"
#include "platform/posix/Sqlite.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The contents of a hive's file: a tree of keys, each with its values. Every failure is a SqliteFailure.
///
/// A key's row has its whole path, by which it is found, and the row of the key above it, with which it goes. The row
/// of the hive itself has an empty path.
class HiveDatabase {
public:
    /// Opens a file that exists, and looks whether it is sound.
    HiveDatabase(const HiveFile& file, SqliteDatabase::Mode mode);

    /// Whether there are tables to work with. A new and empty file has none; `create` makes them.
    [[nodiscard]] bool ready(bool create);

    /// Whether it was opened as a file that nobody changes, so that it must not stay open.
    [[nodiscard]] bool isFrozen() const noexcept { return mode_ == SqliteDatabase::Mode::Frozen; }
    [[nodiscard]] bool hasMoved() const noexcept { return database_.hasMoved(); }

    /// From here on, up to the end, all that is written is one transaction.
    void begin();
    /// Keeps what was written, or undoes it; whether it stays.
    bool end(bool keep);

    [[nodiscard]] std::optional<RegistryValue> read(const std::string& path, std::string_view name);
    void create(const std::string& path);
    void write(const std::string& path, std::string_view name, const RegistryValue& value);
    bool removeValue(const std::string& path, std::string_view name);
    bool removeKey(const std::string& path);
    [[nodiscard]] bool exists(const std::string& path);
    [[nodiscard]] std::vector<std::string> valueNames(const std::string& path);
    [[nodiscard]] std::vector<std::string> subKeys(const std::string& path);

private:
    struct Statements {
        explicit Statements(SqliteDatabase& database);

        SqliteStatement findKey;
        SqliteStatement addKey;
        SqliteStatement removeKey;
        SqliteStatement readValue;
        SqliteStatement writeValue;
        SqliteStatement removeValue;
        SqliteStatement listValues;
        SqliteStatement listKeys;
    };

    void check();
    void chooseJournal();
    void createTables();
    [[nodiscard]] std::int64_t version();
    [[nodiscard]] std::optional<std::int64_t> findKey(const std::string& path);
    template <class Work>
    void asOne(Work&& work);
    [[nodiscard]] std::int64_t makeKey(const std::string& path);
    [[nodiscard]] std::vector<std::string> list(SqliteStatement& statement, const std::string& path);

    bool forAll_;
    SqliteDatabase::Mode mode_;
    SqliteDatabase database_;
    std::optional<Statements> statements_;
    std::optional<SqliteTransaction> together_;
};

} // namespace kel
