// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "simulators/framework/Cable.h"
#include "simulators/framework/OutputFaults.h"
#include "simulators/framework/SheetLog.h"
#include "simulators/framework/SimulatorOptions.h"

#include <deque>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The base of all simulated readers: the far end of a line with an output queue, a clock, a pile of sheets, a log and
/// a list of what the host did wrongly. A model adds `onByte`: bytes in, one at a time, and `send` for its replies.
///
///     class MyReader final : public Simulator {
///         void onByte(Byte byte) override
///         {
///             switch (byte) {
///             case 'Q': send("\x20\x20\x20"); break;
///             case '8': schedule(300ms, [this] { readSheet(); }); break;
///             default: fault("unknown command " + hex(byte));
///             }
///         }
///     };
class Simulator : public LineDevice, public CountsLineErrors, public TellsModemLines {
public:
    explicit Simulator(SimulatorOptions options);
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    void lineOpened(Moment now, const LineParameters& line) final;
    void lineClosed(Moment now) final;
    void byteFromHost(Moment now, Byte byte) final;
    [[nodiscard]] std::optional<Moment> nextEvent() const final;
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) final;
    [[nodiscard]] bool hungUp() const final { return hungUp_; }

    /// What the host's port has counted since the line was opened, and what it sees on the wires of their own.
    [[nodiscard]] LineErrors lineErrors() final { return cable_.errors(); }
    [[nodiscard]] std::optional<ModemLines> modemLines() final { return cable_.modemLines(); }

    /// What the host did wrongly so far, in order, the first of many; a test fails if anything stands here.
    [[nodiscard]] const std::vector<std::string>& errors() const noexcept { return errors_; }

    /// What was done with each sheet, in order; of a long session the latest entries.
    [[nodiscard]] const std::vector<SheetRecord>& log() const noexcept { return log_; }

    /// Hears of every new entry of the log, and of every error, as it comes.
    void onLog(std::function<void(const SheetRecord&)> listener) { logListener_ = std::move(listener); }
    void onError(std::function<void(const std::string&)> listener) { errorListener_ = std::move(listener); }

    /// More sheets are put into the feeder while the reader is at work.
    void putSheet(SimulatedSheet sheet);

    /// Somebody pulls the plug: what is still in the queue is lost.
    void unplug();

    /// Settings by name that were given but that this model has not asked for; and those that it has.
    [[nodiscard]] std::vector<std::string> unknownSettings() const;
    [[nodiscard]] const std::set<std::string>& knownSettings() const noexcept { return knownSettings_; }

protected:
    /// What the next feeding of a sheet gives.
    enum class Feed { Sheet, Empty, Jam };

    /// A byte of the host.
    virtual void onByte(Byte byte) = 0;

    /// The host has opened or closed the line. The parameters are in `line()`.
    virtual void onOpen() {}
    virtual void onClose() {}

    /// After the first opening, if a session that was killed has left the reader in the middle of something.
    virtual void onLeftover() {}

    /// Somebody has put a sheet into the feeder: a reader that was waiting for one can take it now.
    virtual void onSheetPut() {}

    /// The present moment: that of the byte, of the scheduled action, or of the opening that is being handled.
    [[nodiscard]] Moment now() const noexcept { return now_; }

    /// How the line is set: as the host has set it, or by a fault of the site as the reader is.
    [[nodiscard]] const LineParameters& line() const noexcept { return line_; }

    /// Queues bytes after those that are on their way, one character time each, or none at an unlimited rate.
    /// While the line is closed they are lost. One call is one reply as far as faults go.
    void send(std::string_view bytes);
    void send(Byte byte) { send(std::string_view(reinterpret_cast<const char*>(&byte), 1)); }

    /// The same, but the host sees so many bytes at once, when the last of them is through: as a port hands over what
    /// it has in its own buffer. 0 is the whole reply. Beside faults the bytes come one by one.
    void sendInLumps(std::string_view bytes, Int32 lump);

    /// A status as this reader's firmware sends it.
    [[nodiscard]] std::string asStatus(std::string usual) const;

    /// The same as `send` after a delay.
    void sendAfter(Moment delay, std::string bytes);

    /// Does something after a delay. Actions of the same moment run in the order in which they were scheduled.
    void schedule(Moment delay, std::function<void()> action);

    /// Forgets all that is scheduled and all that has not arrived yet, as a reset does.
    void dropPending();

    /// Whether bytes are still on their way to the host; whether an action is outstanding.
    [[nodiscard]] bool isSending() const noexcept { return !queue_.empty(); }
    [[nodiscard]] bool isScheduled() const noexcept { return !actions_.empty(); }

    /// Notes that the host did something wrong.
    void fault(std::string what);

    /// Whether a sheet lies ready, without touching it.
    [[nodiscard]] Feed nextFeed() const;

    /// Takes the next sheet into the transport and notes it in the log; it is then `sheet()`, until the next one.
    /// At an empty feeder or a jam there is none, and the log has that. Later bytes are those of this sheet.
    Feed feed();

    /// The sheet taken last; an empty one before the first. Its number, from 1; 0 before the first.
    [[nodiscard]] const SimulatedSheet& sheet() const noexcept { return sheet_; }
    [[nodiscard]] Int32 sheetNumber() const noexcept { return sheetNumber_; }

    /// Adds to the log; the sheet's number is filled in.
    void note(SheetEvent event, std::string text = {}, Int32 line = 0, Int32 position = 0);

    [[nodiscard]] kelReaderType model() const noexcept { return options_.model; }
    [[nodiscard]] const FormDescription& form() const noexcept { return options_.form; }

    /// A free setting of the options; for the constructor of a model. A number that is none (0x20 and 32 are) is
    /// std::invalid_argument.
    [[nodiscard]] std::string setting(const std::string& name, const std::string& fallback);
    [[nodiscard]] Int32 settingNumber(const std::string& name, Int32 fallback);
    [[nodiscard]] bool settingFlag(const std::string& name, bool fallback);

    /// A number of milliseconds.
    [[nodiscard]] Moment settingTime(const std::string& name, Int32 fallback)
    {
        return std::chrono::milliseconds(settingNumber(name, fallback));
    }

    /// The line must be set like this ("9600,N,8,1"), or opening it is a fault; the setting `line` wins over it.
    void demandLine(const std::string& settings);

private:
    struct QueuedByte {
        Moment at;
        Byte byte;
    };
    struct Action {
        Moment at;
        std::function<void()> run;
    };

    [[nodiscard]] Moment sendFaultily(std::string_view bytes, Moment moment, Moment each);
    void runFirstAction();
    [[nodiscard]] std::optional<Moment> nextOwnEvent() const;
    void hear();
    [[nodiscard]] bool isAt(SiteFault::Kind kind, Int32 sheet) const;
    void record(SheetRecord entry);

    SimulatorOptions options_;
    SheetFeeder feeder_;
    OutputFaults outputFaults_;
    SiteFaults siteFaults_;
    LineParameters usualLine_;
    Cable cable_;
    bool leftoverDue_;
    SimulatedSheet sheet_;
    Int32 sheetNumber_ = 0;
    Moment now_{};
    LineParameters line_;
    bool open_ = false;
    std::deque<QueuedByte> queue_;
    Moment transmitterFree_{};
    std::vector<Action> actions_; // by time, those of one moment in their order
    std::optional<Moment> hangUpAt_;
    bool hungUp_ = false;
    std::string demandedLine_;
    std::vector<std::string> errors_;
    std::vector<SheetRecord> log_;
    std::function<void(const SheetRecord&)> logListener_;
    std::function<void(const std::string&)> errorListener_;
    std::set<std::string> knownSettings_;
};

/// A byte as two hexadecimal digits, for the text of a fault.
[[nodiscard]] std::string hex(Byte byte);

/// Whether a part of a command is so many decimal digits.
[[nodiscard]] bool isDigits(std::string_view text, std::size_t count);

} // namespace kel
