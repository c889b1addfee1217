// SPDX-License-Identifier: MIT
#include "stream/StreamSender.h"

#include "store/StoreProblem.h"
#include "store/StoreWatch.h"
#include "store/StoredSheets.h"
#include "stream/EntryMessage.h"
#include "stream/Outbox.h"
#include "types/Text.h"

#include <deque>
#include <set>
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
// What the stream has not taken is tried again after so long, and on each new connection.
constexpr std::chrono::minutes kBetweenAttempts{10};
// A wait for the stream looks up so often whether it is to end.
constexpr std::chrono::milliseconds kSenderTurn{100};

/// The messages of a reader have one order.
std::string lineOf(const Origin& origin)
{
    return origin.store + "\n" + origin.station + "\n" + origin.reader;
}

std::string nameOf(const EntryTexts& entry)
{
    const std::string of = " of the batch " + entry.origin.batch + " of the reader " + entry.origin.reader;
    return entry.sheet() ? "Sheet " + CStr(entry.sheet()->number) + of
                         : "A report after sheet " + CStr(entry.report()->afterSheet) + of;
}

} // namespace

/// What is sent on one connection, and what the stream says to it.
class StreamSender::Sending {
public:
    Sending(const std::filesystem::path& store, const StreamAddress& address, const Opener& opener,
            const StreamNews::Tell& tell)
        : address_(address), tell_(tell), sheets_(store), mark_(store), watch_(store), outbox_(mark_.last()),
          marked_(outbox_.last())
    {
        // It may be a new one, and the stream may be far away for long.
        mark_.want(true);
        stream_ = opener().publisher(address);
        tryHeldAgain();
    }

    [[nodiscard]] bool hasMoved() const { return mark_.hasMoved(); }
    [[nodiscard]] bool isIdle() const { return outbox_.underWay() == 0; }

    void load()
    {
        if (Clock::now() - triedAgain_ > kBetweenAttempts)
            tryHeldAgain();
        if (outbox_.size() >= kMostLoaded / 2)
            return;
        for (; !again_.empty() && outbox_.size() < kMostLoaded; again_.pop_front())
            loadAgain(again_.front());
        sheets_.readTexts(
            outbox_.loaded(),
            [&](const EntryTexts& entry) {
                outbox_.add(entry.id, lineOf(entry.origin), messageOf(entry, address_.subject));
                return outbox_.size() < kMostLoaded;
            },
            [&](std::int64_t id, const std::string& sentence) {
                outbox_.pass(id);
                hold(id, sentence, "");
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
        const std::optional<StreamAnswer> answer = stream_->answer(kSenderTurn);
        if (answer) {
            tried_.erase(answer->ticket);
            if (!answer->refusal.empty())
                refused(answer->ticket, answer->refusal);
            else if (held_.erase(answer->ticket) > 0)
                mark_.release(answer->ticket);
            outbox_.acknowledge(answer->ticket);
            if (outbox_.last() - marked_ >= kBetweenMarks)
                moveMark();
        }
        if (const auto oldest = outbox_.oldest(); oldest && Clock::now() - *oldest > kPatience)
            throw StreamProblem("The stream " + address_.stream + " does not acknowledge what is sent to it.");
        return answer && answer->refusal.empty();
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

    void tryHeldAgain()
    {
        triedAgain_ = Clock::now();
        const std::vector<std::int64_t> held = mark_.held();
        again_.assign(held.begin(), held.end());
        held_ = {held.begin(), held.end()};
    }

    void loadAgain(std::int64_t id)
    {
        if (tried_.contains(id))
            return;
        const bool isThere = with(id, [&](const EntryTexts& entry) {
            tried_.insert(id);
            outbox_.addAgain(id, lineOf(entry.origin), messageOf(entry, address_.subject));
        });
        if (isThere)
            return;
        held_.erase(id); // it has been forgotten
        mark_.release(id);
    }

    void refused(std::int64_t id, const std::string& refusal)
    {
        with(id, [&](const EntryTexts& entry) {
            hold(id, nameOf(entry) + " does not go into the stream: " + refusal + ".", lineOf(entry.origin));
        });
    }

    /// The store keeps what does not go into the stream. It is told once for each reader.
    void hold(std::int64_t id, const std::string& sentence, const std::string& line)
    {
        if (!held_.insert(id).second)
            return;
        mark_.hold(id, sentence);
        if (told_.insert(line).second)
            tell_(sentence + " The store keeps it, and the others are sent.");
    }

    /// Whether the store has an entry; if it can be read, something is done with it.
    bool with(std::int64_t id, const std::function<void(const EntryTexts& entry)>& work)
    {
        bool isThere = false;
        const auto take = [&](const EntryTexts& entry) {
            isThere = isThere || entry.id == id;
            if (entry.id == id)
                work(entry);
            return false;
        };
        sheets_.readTexts(id - 1, take,
                          [&](std::int64_t damaged, const std::string&) { isThere = isThere || damaged == id; });
        return isThere;
    }

    const StreamAddress& address_;
    const StreamNews::Tell& tell_;
    StoredSheets sheets_;
    SentMark mark_;
    StoreWatch watch_;
    Outbox outbox_;
    std::int64_t marked_;
    std::set<std::int64_t> held_;    ///< what is not in the stream and does not go into it
    std::deque<std::int64_t> again_; ///< what of it is to be tried again now
    std::set<std::int64_t> tried_;   ///< what of it is being tried
    Clock::time_point triedAgain_{};
    std::set<std::string> told_; ///< readers with something that it does not take
    std::unique_ptr<StreamPublisher> stream_;
};

StreamSender::StreamSender(std::filesystem::path store, StreamAddress address, Pauses pauses, StreamNews::Tell tell,
                           Opener opener)
    : store_(std::move(store)), address_(std::move(address)), pauses_(pauses), tell_(std::move(tell)),
      news_("The stream " + address_.stream + " takes sheets.", "The store keeps the sheets meanwhile.", tell_),
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
        SentMark mark(store_, 0); // whoever asks for the state does not wait
        state.unsent = mark.unsent();
        if (state.problem.empty())
            state.problem = mark.reason();
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

/// One connection, until it is lost or the sender is to end. A stream that answers may still take nothing: it is up
/// when it has taken something, or when there is nothing to take.
void StreamSender::sendOnce()
{
    if (!std::filesystem::exists(store_)) {
        pauses_.reset(); // the next sheet makes a new one
        return;
    }
    Sending sending(store_, address_, opener_, tell_);
    try {
        while (!stopping() && !sending.hasMoved()) {
            sending.load();
            sending.send();
            if (sending.isIdle()) {
                news_.up();
                sending.waitForSheets(stop_.handle());
            } else if (sending.receive()) {
                news_.up();
                pauses_.reset();
            }
        }
    } catch (const StreamProblem&) {
        sending.moveMark(); // what came before counts
        throw;
    }
    sending.moveMark();
}

} // namespace kel
