// SPDX-License-Identifier: MIT
#pragma once

#include "python/Worker.h"

#include <KELReader81U/Boolean.h>
#include <KELReader81U/ReaderEvents.h>
#include <KELReader81U/host/Events.h>
#include <KELReader81U/host/Failure.h>
#include <KELReader81U/host/Reader.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kel::python {

/// A sheet that the loop of the host has. Its owner alone changes it.
struct HeldSheet {
    host::Sheet sheet;
    std::chrono::steady_clock::time_point readAt = std::chrono::steady_clock::now();
    bool inReader = true; ///< until the loop comes back for the next one
    bool toPrint = false;
};

/// A batch that runs on a worker and stops at each sheet until the loop comes back for the next one. So the body of the
/// loop runs while the sheet is in the reader: it may reject it, or have it printed on.
///
///       the loop            the worker
///     advance() ----------> read ... ReadSheet: deliver()
///     news    <-------------------- the sheet is there; tasks are served
///     ... reject(), print() ------> carried out
///     advance() ----------> back to the reader: print, AfterSheet, the next read ...
///     news    <-------------------- the batch has ended
class Batch final : public host::Events {
public:
    using Read = std::function<void(Batch&)>;

    Batch(Worker& worker, Read read) : worker_(worker), read_(std::move(read)) {}

    // --- The loop's side

    /// Starts the batch, or lets it go on; `news()` comes when there is a sheet or the end.
    void advance();
    [[nodiscard]] Signal& news() { return news_; }
    /// Asks for the end after the sheet at hand, from any thread.
    void wantStop() { stopWanted_ = true; }
    [[nodiscard]] bool isStopWanted() const { return stopWanted_; }

    /// After the news: the sheet that is in the reader now, nothing at the end. The one before has got to know what
    /// became of it.
    [[nodiscard]] std::shared_ptr<HeldSheet> current();
    [[nodiscard]] bool hasEnded() const { return ended_; }
    /// What the thread of the reader has thrown, if anything.
    [[nodiscard]] const std::exception_ptr& thrown() const { return thrown_; }
    /// The reports that have ended nothing, and at the end those that have ended the batch. Each is given once.
    [[nodiscard]] std::vector<host::Failure> takeNotes() { return std::exchange(notes_, {}); }
    [[nodiscard]] std::vector<host::Failure> takeFaults() { return std::exchange(pending_, {}); }

    // --- The worker's side

    /// A read begins: what was reported so far has ended nothing.
    void readBegins();
    /// Hands a sheet to the loop and waits until it comes back.
    HeldSheet& deliver(host::Sheet sheet);
    /// Keeps what a callback has thrown, and stops.
    void keep(std::exception_ptr thrown);
    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override { pending_.push_back(event); }
    void end(const host::BatchEnd& event) override;

    /// Whether sheets come at `ReadSheet`, from a listener; if not they come when they are done.
    bool atReadSheet = false;
    Int32 maxSheets = -1;

private:
    void run();

    Worker& worker_;
    Read read_;
    Signal news_;
    std::atomic<bool> stopWanted_ = false;
    bool begun_ = false;
    bool goesOn_ = false;
    bool ended_ = false;
    Int32 delivered_ = 0;
    std::shared_ptr<HeldSheet> next_;    ///< that the worker hands over
    std::shared_ptr<HeldSheet> current_; ///< that the loop has
    std::optional<host::Sheet> done_;    ///< as it was after the loop had it
    std::vector<host::Failure> pending_;
    std::vector<host::Failure> notes_;
    std::exception_ptr thrown_;
};

/// Asks a callback of the host whether the form goes on with a further record; what it throws ends the batch.
using MoreDataAsked = std::function<bool(const Dictionary& record)>;

/// The events and reports of a batch.
class SheetListener final : public ReaderEvents {
public:
    SheetListener(host::Reader& reader, Batch& batch, const MoreDataAsked& moreData)
        : reader_(reader.object()), batch_(batch), moreData_(moreData)
    {
    }

    void BeforeSheet(Boolean& bInitializePrinter) override;
    void TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                       Boolean& bNeedsMoreData) override;
    void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean& bReject) override;
    void BeforePrint(Boolean& bCancel) override;
    void AfterSheet(Boolean& bCancelScan) override;

private:
    clsKELReader& reader_;
    Batch& batch_;
    const MoreDataAsked& moreData_;
    std::optional<Dictionary> record_;
    Int32 sheets_ = 0;
    bool toPrint_ = false;
};

} // namespace kel::python
