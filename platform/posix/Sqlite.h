// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace kel {

/// What SQLite refused.
class SqliteFailure : public std::runtime_error {
public:
    /// `systemError` is the errno that the system refused a file with, or 0.
    SqliteFailure(int code, const std::string& text, int systemError = 0)
        : std::runtime_error(text), code_(code), systemError_(systemError)
    {
    }

    /// Whether the file is no database, or one with broken contents.
    [[nodiscard]] bool isDamage() const noexcept;
    /// Whether a file that is needed cannot be made or written.
    [[nodiscard]] bool isAccess() const noexcept;
    /// Whether another program holds the file.
    [[nodiscard]] bool isBusy() const noexcept;
    /// Whether the disk takes no more, or no more of this user or of this file.
    [[nodiscard]] bool isFull() const noexcept;
    /// Whether a row contradicts one that is there.
    [[nodiscard]] bool isConflict() const noexcept;

private:
    int code_;
    int systemError_;
};

/// An open database file. Every failure is a SqliteFailure.
class SqliteDatabase {
public:
    /// How a file is opened.
    enum class Mode {
        Shared, ///< other processes may use it too
        Frozen, ///< nobody changes it while it is open: needs no access but to read this one file
    };

    /// Opens a file that exists, also one that may only be read. Another process is waited for up to `patience`
    /// milliseconds.
    SqliteDatabase(const std::filesystem::path& file, Mode mode, int patience);

    /// Runs statements and drops what they give back.
    void run(const char* statements);

    /// The one number that a query answers; 0 if it has no row.
    [[nodiscard]] std::int64_t numberOf(const char* query);

    /// How many rows the last change touched.
    [[nodiscard]] int changes() const noexcept;

    /// Whether the file is gone from its place, or another one has taken it.
    [[nodiscard]] bool hasMoved() const noexcept;

    /// A failure for damage if the file is no database, or has been written over; then nothing more goes into it, not
    /// even when it is closed.
    void demandOwnFile() const;

    [[nodiscard]] sqlite3* handle() const noexcept { return database_.get(); }

private:
    struct Close {
        void operator()(sqlite3* database) const noexcept;
    };
    std::unique_ptr<sqlite3, Close> database_;
};

/// A statement that is compiled once and run many times. The database must outlive it.
class SqliteStatement {
public:
    SqliteStatement(SqliteDatabase& database, const char* text);

    /// One run of a statement, up to its end of life. Places are bound in order; then `next` goes from row to row.
    class Run {
    public:
        explicit Run(SqliteStatement& statement) : statement_(statement) {}
        ~Run();
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;

        /// A text must live as long as the run.
        Run& text(std::string_view value);
        Run& blob(std::string_view value);
        Run& number(std::int64_t value);

        /// Whether there is a row, or another one.
        bool next();

        /// The columns of the row, from 0.
        [[nodiscard]] std::string textAt(int column) const;
        [[nodiscard]] std::int64_t numberAt(int column) const;

    private:
        void bound(int result);

        SqliteStatement& statement_;
        int places_ = 0;
    };

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// A transaction that writes. It is undone unless it is committed.
class SqliteTransaction {
public:
    /// Waits until no other process writes.
    explicit SqliteTransaction(SqliteDatabase& database);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    void commit();

private:
    SqliteDatabase& database_;
    bool open_ = true;
};

} // namespace kel
