// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "types/Reference.h"

#include <memory>

namespace kel {

/// A carrier that the host uses instead of the reader's own, as the drivers use it: a fault of the processor in the
/// host's carrier, control or timer is the host's.
class HostCarrier final : public Carrier {
public:
    explicit HostCarrier(Reference<Carrier> carrier);
    ~HostCarrier() override;

    /// Each asks the host's carrier again; objects returned earlier use what the host returned last.
    [[nodiscard]] SerialControl& mscComm() override;
    [[nodiscard]] ScanTimer& tmrScan() override;

private:
    class Control;
    class Timer;

    Reference<Carrier> carrier_;
    std::unique_ptr<Control> control_;
    std::unique_ptr<Timer> timer_;
};

} // namespace kel
