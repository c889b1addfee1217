#include "dispatch/DriverFamilies.h"

#include "drivers/peripheral_dynamics/basPeripheralDynamics.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

constexpr DriverFamily kPeripheralDynamics = {
    .Init = InitReaderPD,
    // The reader is told that the session ends, but its close step counts as failed.
    .Close = [](ReaderContract& oReader) {
        CloseReaderPD(oReader);
        return False;
    },
    .Read = ReadPagePD,
    .Reject = RejectPagePD,
    .Eject = [](ReaderContract& oReader, Boolean&) { EjectPagePD(oReader); },
};

struct ModelRow {
    kelReaderType eReaderType;
    const DriverFamily* family;
};

constexpr ModelRow kModelRows[] = {
    {kelReaderTypePDIVMR138, &kPeripheralDynamics},
};

} // namespace

const DriverFamily* driverFamily(kelReaderType eReaderType)
{
    const auto* row = std::find_if(std::begin(kModelRows), std::end(kModelRows),
                                   [&](const ModelRow& model) { return model.eReaderType == eReaderType; });
    return row == std::end(kModelRows) ? nullptr : row->family;
}

} // namespace kel
