// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/ControlAround.h"
#include "recording/TraceLog.h"
#include "types/Reference.h"
#include "types/RuntimeFailure.h"

namespace kel {

/// A carrier around another one that writes a transcript of all that passes. A host puts it in the place of a reader's
/// own; the carrier inside does not notice.
///
///     reader.fComm(makeReference<TracingCarrier>(reader.fComm(), head, write));
class TracingCarrier final : public Carrier {
public:
    /// The head is written at once, and the settings of the line after it when it is opened: "# line: 9600,N,8,1".
    TracingCarrier(Reference<Carrier> traced, const TraceLog::Head& head, TraceLog::Write write);

    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return traced_->tmrScan(); }

private:
    class Control final : public ControlAround {
    public:
        Control(TracingCarrier& carrier, TraceLog::Write write) : carrier_(carrier), log_(std::move(write)) {}

        [[nodiscard]] TraceLog& log() noexcept { return log_; }

        using ControlAround::CommPort;
        using ControlAround::Handshaking;
        using ControlAround::PortOpen;
        using ControlAround::Settings;
        void CommPort(Int16 value) override;
        void Settings(const std::string& value) override;
        void Handshaking(Int32 value) override;
        void PortOpen(Boolean value) override;
        [[nodiscard]] Int32 InBufferCount() override;
        [[nodiscard]] std::string Input() override;
        void Output(std::string_view bytes) override;

    private:
        [[nodiscard]] SerialControl& inner() const override { return carrier_.traced_->mscComm(); }
        template <class Action>
        void setting(const char* member, Action action);
        template <class Action>
        auto watching(Action action);
        void keepUntaken();
        void noteLineErrors();

        TracingCarrier& carrier_;
        TraceLog log_;
        LineErrors noted_;
        std::string kept_; // bytes taken ahead of the host, of a line that is dead
        bool lineWritten_ = false;
        bool deathWritten_ = false;
    };

    Reference<Carrier> traced_;
    Control control_;
};

} // namespace kel
