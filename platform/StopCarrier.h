// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "types/Export.h"
#include "types/Reference.h"

#include <functional>

namespace kel {

/// A carrier around another one for a batch that somebody may stop. Some waits of a dialogue do not look at
/// `CancelScan`, and end with their time alone, which may be ten minutes. Once a stop is wanted they have two more
/// seconds: enough for a reader that is there, also for the last words at the end of the session.
class KEL_INTERNAL StopCarrier final : public Carrier {
public:
    StopCarrier(Reference<Carrier> carrier, std::function<bool()> stopWanted);

    [[nodiscard]] SerialControl& mscComm() override { return carrier_->mscComm(); }
    [[nodiscard]] ScanTimer& tmrScan() override { return timer_; }

private:
    class Timer final : public ScanTimer {
    public:
        explicit Timer(StopCarrier& carrier) : carrier_(carrier) {}

        [[nodiscard]] Int32 Interval() const override { return inner().Interval(); }
        void Interval(Int32 milliseconds) override;
        [[nodiscard]] Boolean Enabled() const override;
        void Enabled(Boolean value) override { inner().Enabled(value); }

    private:
        [[nodiscard]] ScanTimer& inner() const { return carrier_.carrier_->tmrScan(); }

        StopCarrier& carrier_;
    };

    Reference<Carrier> carrier_;
    std::function<bool()> stopWanted_;
    Timer timer_{*this};
    bool hurried_ = false;
};

} // namespace kel
