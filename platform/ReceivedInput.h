// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineErrors.h"
#include "platform/MessagePump.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace kel {

/// The input side of an open line: fetches what has arrived, and keeps it until it is taken.
///
/// A look fetches all there is, mostly with one read. The line is looked at when nothing is in the buffer, and
/// otherwise only when what is known of it may be old: after a pause or an output, or when a character could have come
/// since the last look. So a loop that takes byte by byte costs no system call a byte, and one that waits for more
/// bytes sees them come.
///
/// A line that has hung up gives what came before, and fails with 8020 after that. So does one whose other side sends
/// without end: loops that take what there is until nothing is left have no end of their own.
class ReceivedInput {
public:
    virtual ~ReceivedInput() = default;
    ReceivedInput(const ReceivedInput&) = delete;
    ReceivedInput& operator=(const ReceivedInput&) = delete;

    /// How long a character takes on this line; decides when a look is old.
    void characterTime(Moment time);

    // --- For the caller of the line

    /// How many bytes wait. 8020 on a line that has hung up and has no more, or that the caller waits on in vain: it
    /// got the same number three times, and time passed in between.
    [[nodiscard]] Int32 count();

    /// Takes up to `most` bytes, or with 0 all that wait.
    [[nodiscard]] std::string take(Int32 most);

    /// Waits until nothing has come for a moment, for a longer moment at most, and drops what came till then: what a
    /// reader still says to the command of an earlier session is nobody's.
    void dropUntilSilent();

    /// Bytes have been sent, so that an answer may have come.
    void answerMayCome() noexcept
    {
        known_ = Known::Outdated;
        busyInTurn_ = true;
        streamed_ = 0;
    }

    /// The failures of a line that has hung up, and of one that does not take the rest of an output.
    [[noreturn]] void failHungUp() const;
    [[noreturn]] void failStuck(std::size_t bytesLeft) const;

    /// The other side of the line found out that it has hung up.
    void hangUp() noexcept { hungUp_ = true; }
    [[nodiscard]] bool hungUp() const noexcept { return hungUp_; }

    // --- For the pump

    /// Whether the line can bring more: it is connected, and there is room.
    [[nodiscard]] bool canBringMore() const noexcept { return !hungUp_ && waiting() < kRoom; }

    /// Fetches all that has arrived without the caller's knowing. `hangUpSignalled`: the system has marked the line as
    /// hung up.
    void fetch(bool hangUpSignalled = false);

    /// Whether something waits that the caller does not know of yet.
    [[nodiscard]] bool untold() const noexcept { return news_ != News::None; }

    /// Whether the caller is not to be kept: since the pump last returned it has taken or sent something, or has been
    /// learnt of more than before; or something waits that is news to it. So a caller that pauses whenever nothing
    /// waits gets to its pause, and one that yields between asking and taking is not held up.
    [[nodiscard]] bool inviting() const noexcept { return busyInTurn_ || (waiting() > 0 && news_ == News::Fresh); }

    /// The pump gives the thread back to the caller.
    void turnEnds() noexcept;

    /// Time has passed that the caller spent on nothing else.
    void timePasses() noexcept;

    /// How often the line has been read, for tests.
    [[nodiscard]] std::uint64_t reads() const noexcept { return reads_; }

    // --- For the open line

    /// What has gone wrong with characters since the line was opened.
    [[nodiscard]] virtual LineErrors errors() = 0;

    /// The most that waits here to be taken. The largest page of any reader, two sides of 150 rows and 48 columns, has
    /// 14,700 bytes. What comes beyond it stays with the system, which holds a network's sender up and counts what a
    /// wire loses.
    static constexpr std::size_t kRoom = 64 * 1024;

    /// The most that a reader may send without a pause and without being spoken to: no such thing as a reply is larger,
    /// and a sender that never ends is caught within a moment. It is not believed again.
    static constexpr std::size_t kLongestStream = 128 * 1024;

protected:
    /// `name` is for failures. A read is given room for so many bytes.
    ReceivedInput(std::string name, std::size_t readSize);

    /// What a read gave, and whether there may be more that did not fit.
    struct Fetched {
        std::size_t count = 0;
        bool more = false;
    };

    /// Reads what is there, up to `room` bytes; it never waits. A line that is gone is reported by `hangUp`.
    [[nodiscard]] virtual Fetched read(char* into, std::size_t room) = 0;

    /// Waits until something may have come, up to a moment.
    virtual void awaitInput(Moment until) = 0;

    /// The steady clock.
    [[nodiscard]] virtual Moment time() const noexcept;

private:
    static constexpr int kLooksAtDeadLine = 3;

    /// What is known of the line, beside when it was last looked at.
    ///
    ///     state      comes with                              for a caller that has taken everything
    ///     Outdated   an output, a pause, a read that left    the line is looked at
    ///                some for lack of room
    ///     Looked     a look or a fetch, and in place of      the line is looked at
    ///                Turned with the next turn
    ///     Vain       a look that found nothing               the line is looked at
    ///     Turned     a turn of the pump after Vain           nothing has come, once, if no time has passed:
    ///     Emptied    a fetch that took all there was             then the state is Vain
    enum class Known { Outdated, Looked, Vain, Turned, Emptied };

    /// What the pump has fetched and the caller has not asked about. `fetch` makes it Fresh, a turn of the pump that
    /// ends makes that Offered, and the caller that asks or takes makes both None.
    enum class News { None, Fresh, Offered };

    [[nodiscard]] std::size_t waiting() const noexcept { return buffer_.size() - taken_; }
    [[nodiscard]] bool mayBeOld() const noexcept;
    [[nodiscard]] bool nothingCanHaveCome() noexcept;
    void look();
    [[nodiscard]] Fetched readOnce();
    void failIfEndless() const;

    std::string name_;
    std::string fetched_;
    Moment lookLasts_{};
    Moment lastLook_{};
    std::string buffer_;
    std::size_t taken_ = 0;
    Known known_ = Known::Looked;
    News news_ = News::None;
    std::size_t told_ = 0;    // how many bytes wait, as the caller knows
    bool busyInTurn_ = false; // the caller has taken or sent bytes since the pump last returned, or learnt of more
    bool hungUp_ = false;
    int vainLooks_ = 0; // at a dead line, without taking anything
    bool timePassed_ = false;
    std::uint64_t reads_ = 0;
    Moment lastCame_{};
    std::size_t streamed_ = 0; // bytes without a pause or an output in between
    bool endless_ = false;
};

} // namespace kel
