// SPDX-License-Identifier: MIT
#include "stream/StreamSender.h"

#include "store/StoreProblem.h"
#include "store/StoreWatch.h"
#include "store/StoredSheets.h"
#include "stream/EntryMessage.h"
#include "stream/Outbox.h"

#include <utility>

namespace kel {

namespace {

// More does not make it faster, and has to be sent again when the connection is lost.
constexpr std::size_t kMostUnderWay = 256;
// What is in memory at a time, and how many are acknowledged between two marks in the store.
constexpr std::size_t kMostLoaded = 512;
constexpr std::int64_t kBetweenMarks = 100;
// A stream that has not acknowledged a message after so long does not do it on this connection.
constexpr std::chrono::seconds kPatience{10};
// A wait for the stream looks up so often whether it is to end.
constexpr std::chrono::milliseconds kTurn{100};

/// The messages of a reader have one order.
std::string lineOf(const Origin& origin)
{
    return origin.store + "\n" + origin.station + "\n" + origin.reader;
}

} // namespace

/// What is sent on one connection, and what the stream says to it.
class StreamSender::Sending {
public:
    Sending(const std::filesystem::path& store, const StreamAddress& address, StreamOpener& opener)
        : address_(address), sheets_(store), mark_(store), watch_(store), outbox_(mark_.last()),
          marked_(outbox_.last()), stream_(opener.publisher(address))
    {
    }

    [[nodiscard]] bool hasMoved() const { return mark_.hasMoved(); }
    [[nodiscard]] bool isIdle() const { return outbox_.underWay() == 0; }

    void load()
    {
        if (outbox_.size() >= kMostLoaded / 2)
            return;
        sheets_.read({}, outbox_.loaded(), [&](const Entry& entry) {
            outbox_.add(entry.id, lineOf(entry.origin), messageOf(entry, address_.subject));
            return outbox_.size() < kMostLoaded;
        });
    }

    void send()
    {
        while (outbox_.underWay() < kMostUnderWay) {
            const std::optional<Outbox::Due> due = outbox_.next(Clock::now());
            if (!due)
                return;
            stream_->send(*due->message, due->id);
        }
    }

    /// Whether the stream has acknowledged something.
    [[nodiscard]] bool receive()
    {
        const std::optional<std::int64_t> ticket = stream_->acknowledged(kTurn);
        if (ticket) {
            outbox_.acknowledge(*ticket);
            if (outbox_.last() - marked_ >= kBetweenMarks)
                moveMark();
        }
        if (const auto oldest = outbox_.oldest(); oldest && Clock::now() - *oldest > kPatience)
            throw StreamProblem("The stream " + address_.stream + " does not acknowledge what is sent to it.");
        return ticket.has_value();
    }

    void waitForSheets(int stop)
    {
        moveMark();
        stream_->check();
        static_cast<void>(watch_.wait(stop));
    }

    void moveMark()
    {
        if (outbox_.last() == marked_)
            return;
        marked_ = outbox_.last();
        mark_.move(marked_);
    }

private:
    using Clock = std::chrono::steady_clock;

    const StreamAddress& address_;
    StoredSheets sheets_;
    SentMark mark_;
    StoreWatch watch_;
    Outbox outbox_;
    std::int64_t marked_;
    std::unique_ptr<StreamPublisher> stream_;
};

StreamSender::StreamSender(std::filesystem::path store, StreamAddress address, Pauses pauses, StreamNews::Tell tell,
                           Opener opener)
    : store_(std::move(store)), address_(std::move(address)), pauses_(pauses),
      news_("The stream " + address_.stream + " takes sheets.", "The store keeps the sheets meanwhile.",
            std::move(tell)),
      opener_(std::move(opener))
{
    thread_ = std::thread([this] { run(); });
}

StreamSender::~StreamSender()
{
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    stop_.call();
    thread_.join();
}

StreamState StreamSender::state() const
{
    StreamState state{.isUp = news_.isUp(), .problem = news_.problem()};
    try {
        state.unsent = SentMark(store_).unsent();
    } catch (const StoreProblem&) {
        state.unsent = -1;
    }
    return state;
}

bool StreamSender::stopping() const
{
    const std::lock_guard lock(mutex_);
    return stopping_;
}

/// Waits; false if it is to end.
bool StreamSender::pause(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, time, [this] { return stopping_; });
}

void StreamSender::run()
{
    do {
        try {
            sendOnce();
        } catch (const std::exception& problem) {
            news_.down(problem.what());
        }
    } while (pause(pauses_.next()));
}

/// One connection, until it is lost or the sender is to end.
void StreamSender::sendOnce()
{
    Sending sending(store_, address_, opener_());
    news_.up();
    try {
        while (!stopping() && !sending.hasMoved()) {
            sending.load();
            sending.send();
            if (sending.isIdle())
                sending.waitForSheets(stop_.handle());
            else if (sending.receive())
                pauses_.reset();
        }
    } catch (const StreamProblem&) {
        sending.moveMark(); // what came before counts
        throw;
    }
    sending.moveMark();
}

} // namespace kel
