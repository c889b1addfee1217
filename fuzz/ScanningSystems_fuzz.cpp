// Replies of the Sekonic serial readers, as a defective reader or a noisy line might send them: whatever they hold,
// they end in marks or in one of the failures that are meant, and never outside the arrays or the text.

#include "drivers/scanning_systems/PageReply.h"
#include "drivers/scanning_systems/ScannerFaults.h"
#include "drivers/scanning_systems/SetUp.h"
#include "drivers/scanning_systems/SheetReplies.h"
#include "drivers/scanning_systems/WindowReply.h"
#include "types/Text.h"

#include <cstdint>
#include <cstdlib>
#include <initializer_list>

using namespace kel;

namespace {

/// The settings of a form, taken from the front of the data.
class Settings {
public:
    explicit Settings(std::string_view data) : data_(data) {}

    Int16 small()
    {
        if (data_.empty())
            return 0;
        const auto code = static_cast<Byte>(data_.front());
        data_.remove_prefix(1);
        return static_cast<Int16>(code < 128 ? code : code - 256);
    }

    Int16 any()
    {
        const Int16 high = small();
        return static_cast<Int16>(high * 256 + static_cast<Byte>(small()));
    }

    [[nodiscard]] std::string_view rest() const { return data_; }

private:
    std::string_view data_;
};

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

void demand(bool holds)
{
    if (!holds)
        std::abort();
}

void fuzzPage(Settings settings)
{
    const Int32 rows = 1 + (settings.small() & 0x3F);
    const auto letters = settings.small() & 1 ? ColumnLettersSS::SR430 : ColumnLettersSS::Upwards;
    MarkArray marks(rows, 48);
    PageReplySS reply(marks, letters);
    runs({FailureCode::SubscriptOutOfRange}, [&] {
        for (const char byte : settings.rest()) {
            const Int16 before = reply.row();
            static_cast<void>(reply.take(static_cast<Byte>(byte)));
            demand(reply.row() == before || (byte == '\r' && reply.row() == before + 1));
        }
    });
}

void fuzzWindows(Settings settings)
{
    std::vector<Reference<clsKELReaderWindow>> windows(static_cast<std::size_t>(settings.small() & 7));
    for (auto& window : windows) {
        if (settings.small() == 0)
            continue;
        auto cWindow = makeReference<clsKELReaderWindow>();
        cWindow->StartRow(settings.any());
        cWindow->NumRows(settings.any());
        cWindow->RowGap(settings.any());
        cWindow->StartCol(settings.any());
        cWindow->NumCols(settings.small());
        cWindow->ColGap(settings.any());
        cWindow->Page(static_cast<Int16>(settings.small() & 3));
        if (runs({FailureCode::Overflow}, [&] { makeGapsPositiveSS(*cWindow); }))
            demand(cWindow->RowGap() >= 0 && cWindow->ColGap() >= 0);
        demand(windowCommandSS(*cWindow).size() >= 20);
        window = cWindow;
    }
    MarkArray marks(1 + (settings.small() & 0x3F), 1 + (settings.small() & 0x3F));
    runs({FailureCode::InvalidProcedureCall, FailureCode::Overflow, FailureCode::SubscriptOutOfRange,
          FailureCode::ObjectNotSet},
         [&] { placeWindowReplySS(settings.rest(), windows, 1, marks); });
}

void fuzzTexts(Settings settings)
{
    const Int16 mode = settings.any();
    const std::string_view text = settings.rest();
    demand(thresholdTextSS(mode, settings.any()).starts_with("DL"));
    static_cast<void>(faultTextSS(kelReaderTypeScanningSystemsSR601, mode, text));
    static_cast<void>(faultTextSS(kelReaderTypeSekonicSR430, mode, text));
    runs({FailureCode::Overflow}, [&] { static_cast<void>(timingMarksSS(text)); });
    const bool framed = runs({FailureCode::InvalidProcedureCall}, [&] {
        const std::string barcode = barcodeOfFrameSS(text);
        demand(barcode == "?" || barcode.size() + 2 == text.size());
    });
    demand(framed == (text.size() >= 2 || text == "?"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (text.empty())
        return 0;
    const Settings settings(text.substr(1));
    switch (text.front() % 3) {
    case 0: fuzzPage(settings); break;
    case 1: fuzzWindows(settings); break;
    default: fuzzTexts(settings); break;
    }
    return 0;
}
