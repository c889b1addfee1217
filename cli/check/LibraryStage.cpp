// SPDX-License-Identifier: MIT
#include "cli/check/CheckRun.h"
#include "drivers/sekonic_usb/Library.h"
#include "host/Batch.h"
#include "types/RuntimeFailure.h"

namespace kel {

namespace {

constexpr Int32 kColumns = 48;

std::string statesText(Int32 method, Int32 columns, Int32 feedMode)
{
    return "reading method " + std::to_string(method) + ", " + std::to_string(columns) + " columns, feed mode " +
           std::to_string(feedMode);
}

/// What a start sets, if it is otherwise: sessions leave it so.
void checkState(CheckRun& run, OmrApi& library)
{
    Int32 method = 0;
    Int32 feedMode = 0;
    Int32 ignored = 0;
    library.OMR_GetReadingMethod(method, ignored);
    const Int32 columns = library.OMR_GetNumberOfColumnsToRead();
    library.OMR_GetSheetFeedMode(feedMode, ignored);
    const bool usual = (method == 0 || method == 3) && columns == kColumns && feedMode == 0;
    run.add({.stage = CheckStage::Answers,
             .name = "the reader is as sessions leave it",
             .status = usual ? CheckStatus::Pass : CheckStatus::Warn,
             .expected = statesText(3, kColumns, 0),
             .seen = statesText(method, columns, feedMode),
             .cause = usual ? Cause::None : Cause::LeftInMode});
}

void checkBarcodeUnit(CheckRun& run, OmrApi& library, bool wanted)
{
    constexpr Int32 kNoUnit = -1;
    CheckResult result{.stage = CheckStage::Answers, .name = "barcode unit", .status = CheckStatus::NotApplicable};
    if (wanted) {
        const bool there = library.OMR_GetBarcodeReaderUnit() != kNoUnit;
        result.status = there ? CheckStatus::Pass : CheckStatus::Fail;
        result.cause = there ? Cause::None : Cause::BarcodeUnitMissing;
    }
    run.add(result);
}

bool wantsBarcodes(const CheckRun& run)
{
    clsKELReader reader;
    static_cast<void>(host::prepareReader(reader, run.plan().request));
    return static_cast<bool>(reader.Barcode());
}

/// Opens the reader; nothing if its library is not there.
std::optional<Int32> open(CheckRun& run)
{
    CheckResult result{
        .stage = CheckStage::Answers, .name = "the maker's library is there", .status = CheckStatus::Pass};
    std::optional<Int32> opened;
    try {
        opened = omrApi().OMR_OpenDeviceUSB();
    } catch (const RuntimeFailure& failure) {
        result.status = CheckStatus::Fail;
        result.seen = failure.text();
        result.cause = Cause::LibraryMissing;
        run.reachable = false;
        run.whyNot = "there is no library";
    }
    run.add(result);
    return opened;
}

} // namespace

void libraryStage(CheckRun& run)
{
    clsKELReader reader;
    OpenSection section(run.bench(), "library", reader);
    const std::optional<Int32> opened = open(run);
    if (!opened)
        return;
    CheckResult result{.stage = CheckStage::Answers, .name = "the reader opens", .status = CheckStatus::Pass};
    if (*opened != 0) {
        result.status = CheckStatus::Fail;
        result.seen = "error " + std::to_string(omrApi().OMR_GetLastError());
        result.cause = Cause::NotConnected;
        run.reachable = false;
        run.whyNot = "the reader does not open";
    }
    run.add(result);
    if (run.reachable) {
        checkState(run, omrApi());
        checkBarcodeUnit(run, omrApi(), wantsBarcodes(run));
    }
    omrApi().OMR_CloseDevice();
}

} // namespace kel
