#pragma once

#include "failure/ObjectLife.h"
#include "platform/Platform.h"

namespace kel {

/// The carrier that a reader object makes for itself: a closed line and a timer of ten seconds, off.
class frmComm final : public Carrier {
public:
    frmComm() : mscComm_(platform().newSerialControl()), tmrScan_(platform().newScanTimer())
    {
        tmrScan_->Interval(10000);
    }

    [[nodiscard]] SerialControl& mscComm() override { return *mscComm_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return *tmrScan_; }

private:
    ObjectLife life_{"frmComm,3"};
    std::unique_ptr<SerialControl> mscComm_;
    std::unique_ptr<ScanTimer> tmrScan_;
};

} // namespace kel
