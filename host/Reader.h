// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "host/Request.h"
#include "reader/clsKELReader.h"
#include "types/Export.h"

#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kel::host {

class Sheets;

/// What to do with reports while a range of sheets is read.
enum class OnFailure {
    Throw, ///< the range throws ReaderFailed once the reader has ended
    Keep,  ///< the range ends; `Reader::failures()` has them
};

/// A reader as a program in modern C++ uses it: a thin layer over `clsKELReader`, which `object()` returns for
/// everything else.
///
///     kel::host::Reader reader({.model = "GradeMaster", .device = "/dev/ttyUSB0"});
///     for (const kel::host::Sheet& sheet : reader.sheets())
///         std::cout << sheet.barcode() << '\n';
///
/// It belongs to the thread that made it. Reports of its thread are its own while it reads, searches or asks; the
/// host's error object has all others.
class KEL_PUBLIC Reader {
public:
    /// Sets the reader up for the request. UsageError for a value that does not fit, ReaderFailed for settings that
    /// could not be loaded. Nothing is opened yet.
    explicit Reader(Request request);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// The published object.
    [[nodiscard]] clsKELReader& object() noexcept;

    /// Starts the simulated reader and creates the trace file, if the request has them. The first batch also does this.
    /// UsageError for options of the simulated reader that are wrong, OperationError for a file that cannot be created.
    void connect();

    /// The batch has so many sheets from earlier sessions: `{sheet}` in the texts to print counts on from there.
    void sheetsBefore(Int32 count) noexcept;

    /// Reads a batch and reports all that happens as it happens. While it runs, `stopWanted`, if there is one, takes
    /// the place of the host's pump: it is asked now and then, and once it says true the batch stops.
    Result read(Events& events, const std::function<bool()>& stopWanted = {}, StopAsked asked = StopAsked::InEachTurn);

    /// The sheets of a batch, each read when the loop comes to it. The session begins with the loop, and ends with it
    /// or with the range. One session at a time.
    [[nodiscard]] Sheets sheets(OnFailure onFailure = OnFailure::Throw);

    /// Within a range of sheets: sends the sheet that was read last to the reject side, or out; a further call for the
    /// same sheet does nothing. `stop` ends the range after this sheet.
    void reject();
    void eject();
    void stop();

    /// Looks for the reader at the ports, first at `startPort` if it is above 0, and asks for its firmware version;
    /// nullopt if none answers; `failures()` says why.
    [[nodiscard]] std::optional<Int16> locate(Int16 startPort = 0);
    [[nodiscard]] std::optional<std::string> firmware();

    /// The form of the sheets: the request's, or once a simulated reader is connected that of its sheets.
    [[nodiscard]] const Form& form() const noexcept;

    /// The reports since the last batch, search or query began.
    [[nodiscard]] const std::vector<Failure>& failures() const noexcept;

    /// Why the trace is incomplete, a sentence; empty if it is complete, or if there is none.
    [[nodiscard]] std::string traceProblem() const;

    /// The host's errors that the simulated reader found, if there is one. This call ends it.
    [[nodiscard]] std::vector<std::string> simulatorErrors();

private:
    friend class Sheets;
    struct State;

    std::unique_ptr<State> state_;
};

/// A range of sheets: one batch, whether one loop reads it or several in turn.
class KEL_PUBLIC Sheets {
public:
    /// At the sheet that was read last.
    class KEL_PUBLIC Iterator {
    public:
        /// The types of an input iterator.
        using value_type = Sheet;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;

        /// At the sheet that the range has read last.
        explicit Iterator(Sheets& sheets) : sheets_(&sheets) {}

        /// That sheet, until the next one is read.
        [[nodiscard]] const Sheet& operator*() const;
        [[nodiscard]] const Sheet* operator->() const { return &**this; }
        /// Reads the next sheet, and throws what `OnFailure` says.
        Iterator& operator++();
        void operator++(int) { ++*this; }
        /// Whether the batch has ended.
        [[nodiscard]] friend bool operator==(const Iterator& at, std::default_sentinel_t) { return at.atEnd(); }

    private:
        [[nodiscard]] bool atEnd() const;

        Sheets* sheets_;
    };

    /// A batch of a reader; see `Reader::sheets`.
    Sheets(Reader& reader, OnFailure onFailure);
    /// Ends the session, if the loop has not ended.
    ~Sheets();
    Sheets(const Sheets&) = delete;
    Sheets& operator=(const Sheets&) = delete;

    /// Starts the reader and reads the first sheet. A further call goes on with the next sheet of the same batch, and
    /// is at the end once that is over.
    [[nodiscard]] Iterator begin();
    [[nodiscard]] std::default_sentinel_t end() const { return {}; }

private:
    struct Batch;

    std::unique_ptr<Batch> batch_;
};

} // namespace kel::host
