// SPDX-License-Identifier: MIT
// Replies of the Sekonic serial readers, as a defective reader or a noisy line might send them, one by one and within a
// session: whatever they hold, they end in marks or in one of the failures that are meant, and never outside the arrays
// or the text.

#include "drivers/scanning_systems/ErrorTexts.h"
#include "drivers/scanning_systems/PageReply.h"
#include "drivers/scanning_systems/SetUp.h"
#include "drivers/scanning_systems/SheetReplies.h"
#include "drivers/scanning_systems/WindowReply.h"
#include "fuzz/Session.h"
#include "types/Text.h"

#include <cstddef>
#include <cstdlib>
#include <initializer_list>

using namespace kel;

namespace {

constexpr kelReaderType kScanningSystemsModels[] = {kelReaderTypeScanningSystemsSR601,
                                                    kelReaderTypeScanningSystemsSR700351,
                                                    kelReaderTypeScanningSystemsSR410, kelReaderTypeSekonicSR430};

/// Runs a body that may end with one of some failures.
template <class Body>
bool runs(std::initializer_list<FailureCode> meant, Body&& body)
{
    try {
        body();
        return true;
    } catch (const RuntimeFailure& failure) {
        for (const FailureCode code : meant)
            if (failure.code() == code)
                return false;
        std::abort();
    }
}

void fuzzPage(Input input)
{
    const Int32 rows = 1 + (input.byte() & 0x3F);
    const auto letters = input.truth() ? ColumnLettersSS::SR430 : ColumnLettersSS::Upwards;
    MarkArray marks(rows, 48);
    PageReplySS reply;
    runs({FailureCode::SubscriptOutOfRange}, [&] {
        for (const Byte byte : input.rest()) {
            const Int16 before = reply.row();
            static_cast<void>(reply.take(marks, byte, letters));
            demand(reply.row() == before || (byte == '\r' && reply.row() == before + 1), "a row ends with CR");
        }
    });
}

void fuzzWindows(Input input)
{
    std::vector<Reference<clsKELReaderWindow>> windows(static_cast<std::size_t>(input.byte() & 7));
    for (auto& window : windows) {
        if (input.byte() == 0)
            continue;
        auto cWindow = makeReference<clsKELReaderWindow>();
        cWindow->StartRow(input.number16());
        cWindow->NumRows(input.number16());
        cWindow->RowGap(input.number16());
        cWindow->StartCol(input.number16());
        cWindow->NumCols(input.number());
        cWindow->ColGap(input.number16());
        cWindow->Page(static_cast<Int16>(input.byte() & 3));
        if (runs({FailureCode::Overflow}, [&] { makeGapsPositiveSS(*cWindow); }))
            demand(cWindow->RowGap() >= 0 && cWindow->ColGap() >= 0, "gaps are positive");
        demand(windowCommandSS(*cWindow).size() >= 20, "a command has all its fields");
        window = cWindow;
    }
    MarkArray marks(1 + (input.byte() & 0x3F), 1 + (input.byte() & 0x3F));
    WindowPlacingSS at;
    runs({FailureCode::InvalidProcedureCall, FailureCode::Overflow, FailureCode::SubscriptOutOfRange,
          FailureCode::ObjectNotSet},
         [&] { placeWindowReplySS(input.text(), windows, 1, marks, at); });
}

void fuzzTexts(Input input)
{
    const Int16 mode = input.number16();
    const Int16 threshold = input.number16();
    const std::string_view text = input.text();
    demand(thresholdTextSS(mode, threshold).starts_with("DL"), "a threshold is a command");
    static_cast<void>(errorTextSS(kelReaderTypeScanningSystemsSR601, mode, text));
    static_cast<void>(errorTextSS(kelReaderTypeSekonicSR430, mode, text));
    runs({FailureCode::Overflow}, [&] { static_cast<void>(timingMarksSS(text)); });
    const bool framed = runs({FailureCode::InvalidProcedureCall}, [&] {
        const std::string barcode = barcodeOfFrameSS(text);
        demand(barcode == "?" || barcode.size() + 2 == text.size(), "a frame has two characters");
    });
    demand(framed == (text.size() >= 2 || text == "?"), "what is too short is no frame");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Input input(data + 1, size - 1);
    switch (data[0] % 4) {
    case 0: fuzzPage(input); break;
    case 1: fuzzWindows(input); break;
    case 2: fuzzTexts(input); break;
    default: fuzzSerialSession(kScanningSystemsModels, input); break;
    }
    return 0;
}
