// SPDX-License-Identifier: MIT
#include "python/Session.h"

namespace kel::python {

LiveSource::LiveSource(const host::Request& request, MoreDataAsked moreData)
    : reader(request), maxSheets_(request.maxSheets), moreData_(std::move(moreData))
{
}

void LiveSource::read(Batch& batch)
{
    batch.atReadSheet = true;
    const std::uint32_t cookie = reader.object().Advise(std::make_shared<SheetListener>(reader, batch, moreData_));
    struct Unadvise {
        ~Unadvise() { object.Unadvise(cookie); }
        clsKELReader& object;
        std::uint32_t cookie;
    } const unadvise{reader.object(), cookie};
    static_cast<void>(reader.read(
        batch, [&batch] { return batch.isStopWanted(); }, host::StopAsked::AtEachSheet));
}

void LiveSource::stop()
{
    reader.stop();
}

void ReplaySource::read(Batch& batch)
{
    static_cast<void>(replay->read(batch, [&batch] { return batch.isStopWanted(); }));
}

} // namespace kel::python
