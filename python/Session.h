// SPDX-License-Identifier: MIT
#pragma once

#include "python/Batch.h"
#include "python/Waiting.h"
#include "python/Worker.h"

#include <KELReader81U/host/Reader.h>
#include <KELReader81U/host/Replay.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace kel::python {

/// An object is used by a second thread while a first one uses it.
class InUse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where the sheets of a session come from. It is made, used and ended by the worker; `stop` may come from any thread.
class Source {
public:
    virtual ~Source() = default;
    virtual void read(Batch& batch) = 0;
    virtual void stop() = 0;
    [[nodiscard]] virtual Int32 maxSheets() const = 0;
};

/// A reader, on a line or simulated.
class LiveSource final : public Source {
public:
    LiveSource(const host::Request& request, MoreDataAsked moreData);
    void read(Batch& batch) override;
    void stop() override;
    [[nodiscard]] Int32 maxSheets() const override { return maxSheets_; }

    host::Reader reader;

private:
    Int32 maxSheets_;
    MoreDataAsked moreData_;
};

/// A session that was recorded.
class ReplaySource final : public Source {
public:
    explicit ReplaySource(std::unique_ptr<host::Replay> wanted) : replay(std::move(wanted)) {}
    void read(Batch& batch) override;
    void stop() override {}
    [[nodiscard]] Int32 maxSheets() const override { return replay->request().maxSheets; }

    std::unique_ptr<host::Replay> replay;
};

/// A source on a thread of its own, as the interpreter uses it. All members but `stop` are called with the
/// interpreter's lock held, and let go of it while they wait. InUse if a second thread calls meanwhile, or while a
/// first one is within a batch.
template <class OfSource>
class Session {
public:
    template <class Make>
    explicit Session(Make make) : worker_(std::make_unique<Worker>())
    {
        source_ = onWorker(make);
    }
    ~Session() { finish(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Has something done with the source; what it throws is thrown here.
    template <class Use>
    auto call(Use use)
    {
        const Claim claim(*this);
        OfSource& source = demandOpen();
        return onWorker([&] { return use(source); });
    }

    /// The next sheet of the batch, which the first call starts; nothing at its end.
    std::shared_ptr<HeldSheet> next()
    {
        const Claim claim(*this);
        OfSource& source = demandOpen();
        if (!batch_) {
            batch_ = std::make_unique<Batch>(*worker_, [&source](Batch& batch) { source.read(batch); });
            batch_->maxSheets = source.maxSheets();
            notes_.clear();
            faults_.clear();
        }
        owner_ = PyThread_get_thread_ident();
        batch_->advance();
        const std::optional<pybind11::error_already_set> raised = await(batch_->news(), [this] { stop(); });
        if (!raised)
            return settled();
        static_cast<void>(settled());
        finishBatch();
        throw *raised;
    }

    /// Ends the batch in order, if there is one: the reader is done with the sheet at hand, and its line is closed.
    void end()
    {
        const Claim claim(*this, FromAnyThread{});
        finishBatch();
    }

    /// Ends the batch and the source. Nothing else can be asked afterwards.
    void close()
    {
        const Claim claim(*this);
        finish();
    }

    /// Has the batch end after the sheet at hand, and a wait end at once.
    void stop() noexcept
    {
        if (batch_)
            batch_->wantStop();
        if (source_)
            source_->stop();
    }

    /// What was reported in the batch: what has ended nothing, and what has ended it.
    [[nodiscard]] bool hasNotes() const { return !notes_.empty(); }
    std::vector<host::Failure> takeNotes() { return std::exchange(notes_, {}); }
    std::vector<host::Failure> takeFaults() { return std::exchange(faults_, {}); }

    [[nodiscard]] bool isOpen() const { return source_ != nullptr; }

private:
    /// A loop that is left may be tidied away by another thread than its own.
    struct FromAnyThread {};

    /// Takes the session for the calling thread.
    class Claim {
    public:
        explicit Claim(Session& session) : Claim(session, FromAnyThread{}, session.owner_) {}
        Claim(Session& session, FromAnyThread, std::optional<unsigned long> owner = std::nullopt) : session_(session)
        {
            if (session.claimed_ || (owner && *owner != PyThread_get_thread_ident()))
                throw InUse("Another thread uses this object; give each thread one of its own. Only stop() may be "
                            "called from anywhere.");
            session.claimed_ = true;
        }
        ~Claim() { session_.claimed_ = false; }
        Claim(const Claim&) = delete;
        Claim& operator=(const Claim&) = delete;

    private:
        Session& session_;
    };

    OfSource& demandOpen()
    {
        if (!source_)
            throw std::logic_error("It is closed; make another one.");
        return *source_;
    }

    template <class Task>
    auto onWorker(Task task)
    {
        using Result = std::invoke_result_t<Task>;
        std::exception_ptr thrown;
        Signal done;
        if constexpr (std::is_void_v<Result>) {
            worker_->post([&] {
                try {
                    task();
                } catch (...) {
                    thrown = std::current_exception();
                }
                done.give();
            });
            const std::optional<pybind11::error_already_set> raised = await(done, [this] { stop(); });
            if (raised)
                throw *raised;
            if (thrown)
                std::rethrow_exception(thrown);
        } else {
            std::optional<Result> result;
            onWorker([&] { result.emplace(task()); });
            return *std::move(result);
        }
    }

    /// After the news of a batch.
    std::shared_ptr<HeldSheet> settled()
    {
        std::shared_ptr<HeldSheet> sheet = batch_->current();
        const auto add = [](std::vector<host::Failure>& to, std::vector<host::Failure> more) {
            to.insert(to.end(), more.begin(), more.end());
        };
        add(notes_, batch_->takeNotes());
        if (!batch_->hasEnded())
            return sheet;
        add(faults_, batch_->takeFaults());
        const std::exception_ptr thrown = batch_->thrown();
        batch_.reset();
        owner_.reset();
        if (thrown)
            std::rethrow_exception(thrown);
        return nullptr;
    }

    void finishBatch()
    {
        while (batch_) {
            stop();
            batch_->advance();
            awaitQuietly(batch_->news(), [this] { stop(); });
            settled();
        }
    }

    void finish()
    {
        try {
            finishBatch();
        } catch (...) {
            // It is on its way out; what a callback has thrown was thrown to nobody who waits for it.
        }
        if (!worker_)
            return;
        std::unique_ptr<OfSource> source = std::move(source_);
        Signal done;
        worker_->post([&] {
            source.reset();
            done.give();
        });
        awaitQuietly(done, [] {});
        worker_.reset();
    }

    std::unique_ptr<Worker> worker_;
    std::unique_ptr<OfSource> source_;
    std::unique_ptr<Batch> batch_;
    std::vector<host::Failure> notes_;
    std::vector<host::Failure> faults_;
    bool claimed_ = false;
    std::optional<unsigned long> owner_; ///< the thread that has a batch
};

using ReaderSession = Session<LiveSource>;
using ReplaySession = Session<ReplaySource>;

} // namespace kel::python
