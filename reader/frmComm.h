// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ObjectLife.h"
#include "failure/ProcedureVariables.h"
#include "platform/Platform.h"

namespace kel {

/// The carrier that a reader object makes for itself: a closed line and a timer of ten seconds, off.
class frmComm final : public Carrier {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "frmComm";

    frmComm() : mscComm_(platform().newSerialControl()), tmrScan_(platform().newScanTimer())
    {
        tmrScan_->Interval(10000);
    }

    [[nodiscard]] SerialControl& mscComm() override { return *mscComm_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return *tmrScan_; }

private:
    template <class Object>
    friend class StatedModule;

    [[nodiscard]] std::string dumpMembers() const
    {
        VariableLines lines;
        lines.add("mscComm, tmrScan", *mscComm_, *tmrScan_);
        return lines.text();
    }

    ObjectLife life_{"frmComm,3"};
    std::unique_ptr<SerialControl> mscComm_;
    std::unique_ptr<ScanTimer> tmrScan_;
};

} // namespace kel
