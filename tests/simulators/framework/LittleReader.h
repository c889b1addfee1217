// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"
#include "tests/simulators/DeviceBench.h"

namespace kel {

/// A reader that answers "R" with 10 digits, and "F" with the feeding of a sheet and its first row.
class LittleReader final : public Simulator {
public:
    explicit LittleReader(SimulatorOptions options = {}) : Simulator(std::move(options))
    {
        depth = settingNumber("depth", 7);
        flag = settingFlag("flag", false);
    }

    using Simulator::demandLine;
    using Simulator::dropPending;
    using Simulator::Feed;
    using Simulator::isScheduled;
    using Simulator::isSending;
    using Simulator::nextFeed;
    using Simulator::now;
    using Simulator::schedule;
    using Simulator::send;
    using Simulator::sendAfter;

    Int32 depth = 0;
    bool flag = false;
    Feed lastFeed{};
    int sheetsPut = 0;
    std::vector<Moment> heardAt;

private:
    void onByte(Byte byte) override
    {
        heardAt.push_back(now());
        switch (byte) {
        case 'R': send("0123456789"); break;
        case 'F':
            lastFeed = feed();
            if (lastFeed == Feed::Sheet) {
                send("sheet " + std::to_string(sheetNumber()) + ":" + std::to_string(markAt(sheet().side1, 1, 1)));
                note(SheetEvent::Read);
            }
            break;
        default: fault("unknown command " + hex(byte)); break;
        }
    }
    void onSheetPut() override { ++sheetsPut; }
};

/// Three sheets whose first marks are 1, 2 and 3, and faults from their texts.
inline SimulatorOptions withFaults(std::initializer_list<const char*> faults, Rate rate = Rate::Unlimited)
{
    SimulatorOptions options{.sheets = {{.side1 = {{1}}}, {.side1 = {{2}}}, {.side1 = {{3}}}}, .rate = rate};
    for (const char* fault : faults)
        options.faults.push_back(parseFault(fault));
    return options;
}

inline LineParameters thousandBaud()
{
    return {.baudRate = 1000}; // ten bits a character: ten milliseconds
}

inline std::vector<Moment> times(const DeviceBench& bench)
{
    std::vector<Moment> moments;
    for (const DeviceBench::TimedByte& arrival : bench.arrivals())
        moments.push_back(arrival.at);
    return moments;
}

} // namespace kel
