// SPDX-License-Identifier: MIT
#pragma once

#include "store/Entry.h"
#include "store/StoreLock.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kel {

/// What becomes of a store that is full or locked when it is to be opened.
enum class WhenBusy {
    Refuse,    ///< StoreProblem
    OpenLater, ///< it is opened by the first call for which it can be
};

/// Keeps sheets in a file, each safe on the disk before `add` returns. Any thread may call it: entries that wait for
/// the disk at the same time go to it together.
class SheetStore {
public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    /// Opens the store for writing, and makes it if there is none. StoreProblem if that fails, or if somebody writes to
    /// it already. `clock` has the times of the sheets; it may be set back.
    SheetStore(std::filesystem::path file, const std::string& owner, Clock clock = &std::chrono::system_clock::now,
               WhenBusy whenBusy = WhenBusy::Refuse);
    ~SheetStore();
    SheetStore(const SheetStore&) = delete;
    SheetStore& operator=(const SheetStore&) = delete;

    [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }

    /// Opens the file if it is not open. StoreProblem if it cannot be written to now.
    void open();

    /// The number of the last sheet that the store has from a batch of a reader; 0 if it has none. StoreProblem if the
    /// store cannot be opened for writing.
    [[nodiscard]] Int32 lastNumber(const Origin& origin);

    /// Takes an entry, and fills in what the store gives it: id, identity, time, and the number of the sheet. An entry
    /// with an identity comes from another store and keeps it with all the rest; one that is there already stays as it
    /// is. StoreProblem if it cannot be kept; the next call opens the file anew. A file that was moved away takes all
    /// its sheets along, and one that was deleted is saved under another name.
    void add(Entry& entry);

    /// The same for several at once, which all come from readers or all from other stores: all of them or none.
    /// EntryRefused for one from another store that contradicts what is there.
    void add(std::span<Entry> entries);

    /// Saves messages without an entry, each once.
    void setAside(std::span<const UnreadMessage> messages);

private:
    class Writer;
    struct Waiting {
        std::span<Entry> entries{};
        std::span<const UnreadMessage> unread{};
        const Origin* asked = nullptr; ///< whose last number is asked for
        Int32 lastNumber = 0;
        bool own = true; ///< entries come from a reader, and not from another store
        bool done = false;
        std::exception_ptr problem = nullptr;
    };

    void openFile();
    void waitFor(Waiting& mine);
    void demand(Waiting& mine);
    void write(const std::vector<Waiting*>& group);
    [[nodiscard]] std::optional<std::string> leaveMoved();

    std::filesystem::path file_;
    Clock clock_;
    StoreLock lock_;
    std::mutex mutex_;
    std::condition_variable written_;
    std::vector<Waiting*> waiting_;
    bool writing_ = false;
    std::unique_ptr<Writer> writer_; // of the thread that is writing
    std::uint64_t writes_ = 0;       // of the same
};

/// A moment as the store writes it: UTC, 2024-01-31T12:00:00.000Z.
[[nodiscard]] std::string storeTime(std::chrono::system_clock::time_point moment);
[[nodiscard]] std::string storeTime(std::time_t seconds, int milliseconds);

} // namespace kel
