// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/Sqlite.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// Up to where a stream has what a store holds. Every failure is a StoreProblem.
class SentMark {
public:
    /// Readers store their sheets first.
    static constexpr int kPatience = 30'000;

    /// The store exists. Others who write to it are waited for up to `patience` milliseconds.
    explicit SentMark(std::filesystem::path store, int patience = kPatience);

    /// Whether a stream gets what the store holds, so that nothing is removed that it does not have.
    void want(bool wanted);

    /// The stream has everything up to this id; 0 if it has nothing.
    [[nodiscard]] std::int64_t last();

    /// Moves the mark. It may come back to an earlier place if the power fails, and is never too far on.
    void move(std::int64_t id);

    /// The stream does not accept an entry, for a reason, a sentence: the mark may pass it.
    void hold(std::int64_t id, const std::string& reason);
    /// The stream has it now, or the store has it no more.
    void release(std::int64_t id);
    /// The entries that were not accepted, and why the last of them was not; an empty text if there are none.
    [[nodiscard]] std::vector<std::int64_t> held();
    [[nodiscard]] std::string reason();

    /// How many entries the stream does not have yet, including those that it did not accept.
    [[nodiscard]] std::int64_t unsent();

    /// Whether the store's file has been replaced by another.
    [[nodiscard]] bool hasMoved() const noexcept { return database_.hasMoved(); }

private:
    [[nodiscard]] std::int64_t number(const char* query);
    void change(const char* statement, std::int64_t value, std::optional<std::string_view> text = std::nullopt);

    std::filesystem::path store_;
    SqliteDatabase database_;
};

} // namespace kel
