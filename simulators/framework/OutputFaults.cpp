// SPDX-License-Identifier: MIT
#include "simulators/framework/OutputFaults.h"

namespace kel {

namespace {

Moment milliseconds(Int32 count)
{
    return std::chrono::milliseconds(count);
}

} // namespace

Int32 OutputFaults::sentBefore(const Fault& fault) const
{
    if (!fault.sheet)
        return sent_;
    return *fault.sheet == sheet_ ? sentOfSheet_ : kElsewhere;
}

Moment OutputFaults::beforeReply(std::size_t length) const
{
    Moment pause{};
    for (const Fault& fault : faults_) {
        const Int32 before = sentBefore(fault);
        if (fault.kind == Fault::Kind::Late && before != kElsewhere && fault.byte && *fault.byte > before &&
            static_cast<std::size_t>(*fault.byte - before) <= length)
            pause += milliseconds(fault.value);
    }
    return pause;
}

OutputFaults::Fate OutputFaults::next(Byte byte)
{
    Fate fate{.byte = byte};
    for (const Fault& fault : faults_) {
        const Int32 before = sentBefore(fault);
        if (before == kElsewhere || !fault.byte || *fault.byte != before + 1)
            continue;
        switch (fault.kind) {
        case Fault::Kind::Drop: fate.lost = true; break;
        case Fault::Kind::Garble: fate.byte = static_cast<Byte>(fate.byte ^ fault.value); break;
        case Fault::Kind::Split: fate.pause += milliseconds(fault.value); break;
        case Fault::Kind::Drip: drip_ += milliseconds(fault.value); break;
        case Fault::Kind::Silent: silent_ = true; break;
        case Fault::Kind::Unplug: fate.unplugged = true; break;
        case Fault::Kind::Late:
        case Fault::Kind::Jam:
        case Fault::Kind::Empty: break;
        }
    }
    fate.pause += drip_;
    fate.lost = fate.lost || silent_;
    ++sent_;
    ++sentOfSheet_;
    return fate;
}

void OutputFaults::sheetFed(Int32 number)
{
    sheet_ = number;
    sentOfSheet_ = 0;
}

bool OutputFaults::atSheet(Fault::Kind kind, Int32 sheet) const
{
    for (const Fault& fault : faults_)
        if (fault.kind == kind && fault.sheet == sheet && !fault.byte)
            return true;
    return false;
}

} // namespace kel
