// SPDX-License-Identifier: MIT
#include "failure/ThreadReports.h"

#include <utility>

namespace kel {

namespace {

// Without a destructor: reports come until the end of the thread.
thread_local ThreadReports* latest = nullptr;

} // namespace

ThreadReports::ThreadReports(std::shared_ptr<ErrorObject> taker)
    : taker_(std::move(taker)), earlier_(std::exchange(latest, this))
{
}

ThreadReports::~ThreadReports()
{
    ThreadReports** place = &latest;
    while (*place && *place != this)
        place = &(*place)->earlier_;
    if (*place)
        *place = earlier_;
}

std::shared_ptr<ErrorObject> ThreadReports::taker()
{
    return latest ? latest->taker_ : nullptr;
}

} // namespace kel
