// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedClock.h"

#include <cstdio>

namespace kel {

namespace {

std::string inSeconds(Moment moment)
{
    return std::to_string(std::chrono::duration<double>(moment).count()) + " s";
}

} // namespace

void SimulatedClock::advanceTo(Moment moment)
{
    idleLooks_ = 0;
    if (moment <= now_)
        return;
    now_ = moment;
    if (now_ - progressAt_ > longest_)
        stuck("no byte was sent or taken for " + inSeconds(longest_));
}

void SimulatedClock::idleTurn()
{
    idleLooks_ = 0;
    if (++idleTurns_ > mostTurns_)
        stuck("the host yielded " + std::to_string(mostTurns_) + " times and no byte was sent or taken");
}

void SimulatedClock::idleLook()
{
    if (++idleLooks_ > mostLooks_)
        stuck("the host looked at a line again and again without yielding, and nothing can change meanwhile");
}

void SimulatedClock::stuck(const std::string& how) const
{
    const std::string text = "The dialogue is stuck at " + inSeconds(now_) + " of virtual time: " + how + ".";
    std::fprintf(stderr, "%s\n", text.c_str());
    throw StuckDialogue{text};
}

} // namespace kel
