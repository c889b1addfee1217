// SPDX-License-Identifier: MIT
#include "fuzz/Session.h"

#include "contract/AnswerKey.h"
#include "contract/Dictionary.h"
#include "failure/basError.h"
#include "reader/clsKELReader.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace kel {

namespace {

using namespace std::chrono_literals;

// Enough for any dialogue here; one that needs more goes round in a circle.
constexpr Moment kLongestSilence = 1h;
constexpr std::uint64_t kMostIdleTurns = 200'000;
constexpr std::uint64_t kMostIdleLooks = 1'000'000;

/// Every report has its words, and failures of statements are such as a reply, a form, a key or a missing library may
/// cause.
class Reports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        constexpr FailureCode kMeant[] = {
            FailureCode::InvalidProcedureCall, FailureCode::Overflow,          FailureCode::SubscriptOutOfRange,
            FailureCode::ObjectNotSet,         FailureCode::InvalidPortNumber, FailureCode::PortNotOpen,
            FailureCode::ErrorReadingDevice,   FailureCode::FileNotFound,
        };
        demand(!report.ErrorDescription.empty() && !report.ErrorSource.empty(), "a report says what and where");
        demand(!report.ErrorSource.starts_with("KELReader81"), "a source stands without the component's name");
        if (report.ErrorType == kErrorTypeRunTime) {
            const bool meant = std::any_of(std::begin(kMeant), std::end(kMeant), [&](FailureCode code) {
                return static_cast<Int32>(code) == report.ErrorNumber;
            });
            if (!meant)
                std::fprintf(stderr, "%d %s in %s\n", report.ErrorNumber, report.ErrorDescription.c_str(),
                             report.ErrorSource.c_str());
            demand(meant, "a statement failed as one may");
        }
        ++count_;
        return 0;
    }

    [[nodiscard]] int count() const { return count_; }

private:
    int count_ = 0;
};

/// What the host does in its events.
struct Habits {
    bool rejects = false;
    bool ejects = false;
    bool wantsMore = false;
    bool skipsPrint = false;
    bool translates = false;
    Int16 questions = 0;
};

class Host final : public ReaderEvents {
public:
    Host(clsKELReader& reader, Habits habits) : reader_(reader), habits_(habits) {}

    void BeforeSheet(Boolean&) override { ++before_; }
    void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean&) override
    {
        ++read_;
        for (const MarkArray* marks : {&iSide1Array, &iSide2Array}) {
            for (const Int16 mark : marks->elements())
                demand(mark >= -'0' && mark <= 256, "a mark is a byte, a digit or the threshold");
        }
        demand(sBarcodeArray.isDimensioned(), "the barcodes have bounds");
        reader_.Printer()->Active(True);
        reader_.Printer()->Buffer1("page {}\x01\xFF,;\r");
        reader_.Printer()->Buffer2(std::string(200, 'x'));
        if (habits_.rejects)
            reader_.RejectPage();
        if (habits_.ejects)
            reader_.EjectPage();
    }
    void AfterSheet(Boolean&) override { ++after_; }
    void BeforePrint(Boolean& bCancel) override { bCancel = habits_.skipsPrint; }
    void TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray&, TextArray& sBarcodeArray,
                       Boolean& bNeedsMoreData) override
    {
        bNeedsMoreData = habits_.wantsMore && translated_++ % 2 == 0;
        for (const DictionaryKey& key : oData.Keys())
            static_cast<void>(itemText(oData.Item(key)));
        if (habits_.translates) {
            iSide1Array.ReDim(2, 2);
            sBarcodeArray.ReDim(1, 1);
        }
        if (!sBarcodeArray.isDimensioned())
            sBarcodeArray.ReDim(0, 0);
    }
    void GetQuestionsOnPage(Int16&, Int16& iNumberQuestions) override { iNumberQuestions = habits_.questions; }

    [[nodiscard]] int before() const { return before_; }
    [[nodiscard]] int sheets() const { return after_; }
    [[nodiscard]] bool eachWasReadOnce() const { return read_ == after_ && read_ <= before_; }

private:
    clsKELReader& reader_;
    Habits habits_;
    int before_ = 0;
    int read_ = 0;
    int after_ = 0;
    int translated_ = 0;
};

/// A size in a byte: of one page up to 127, of two pages up to 512, or none.
PageArray size(Input& input)
{
    const Byte code = input.byte();
    PageArray pages(1, code < 128 ? 1 : 2);
    for (Int16& page : pages.elements())
        page = static_cast<Int16>(code == 255 ? -1 : code < 128 ? code : (code - 126) * 4);
    return pages;
}

void setForm(clsKELReader& reader, Input& input)
{
    reader.Side1Rows(size(input));
    reader.Side1Cols(size(input));
    reader.Side2Rows(size(input));
    reader.Side2Cols(size(input));
    const Byte counts = input.byte();
    for (int i = 0; i < (counts & 3); ++i) {
        const auto window = makeReference<clsKELReaderWindow>();
        window->StartRow(input.number());
        window->NumRows(input.number());
        window->RowGap(input.number());
        window->StartCol(input.number());
        window->NumCols(input.number());
        window->ColGap(input.number());
        window->Page(static_cast<Int16>(input.byte() % 4));
        window->Orientation(static_cast<Int16>(input.byte() % 5));
        reader.Windows()->Add(window);
    }
    for (int i = 0; i < (counts >> 2 & 3); ++i) {
        const auto zone = makeReference<clsKELReaderBarcode>();
        zone->Page(static_cast<Int16>(input.byte() % 4));
        zone->Distance(input.number());
        zone->Length(input.number());
        zone->Symbology(static_cast<kelBarcodeType>(input.byte()));
        zone->Orientation(static_cast<kelBarcodeOrientation>(input.byte() % 4));
        reader.Barcodes()->Add(zone);
    }
}

/// A key of up to 15 questions in up to four versions; with codes from 240 on it fits no reader.
Reference<AnswerKey> answerKey(Byte code)
{
    auto key = makeReference<AnswerKey>();
    key->FormIDs(code & 1 ? "0001,0002" : "0001");
    key->NumberOfPages(code & 1 ? 2 : 1);
    for (int i = 0; i <= code >> 4; ++i) {
        const std::string right = i % 3 == 0 ? "A" : i % 3 == 1 ? "B,C" : "";
        key->AddQuestion("Question", {"A", "B", "C"}, std::vector<std::string>(1U + (code >> 1 & 3), right),
                         code & 8 ? 4 : 3);
    }
    if (code & 2)
        key->AddQuestion("Essay Score", {}, {"25"});
    if (code >= 240)
        key->AddQuestion("Question", {"A"}, {"Z"});
    return key;
}

} // namespace

void fuzzSession(SimulatedPlatform& machine, std::span<const kelReaderType> models, Input& input)
{
    machine.pump().clock().limits(kLongestSilence, kMostIdleTurns, kMostIdleLooks);
    const auto reports = std::make_shared<Reports>();
    clsKELReader reader;
    reader.SetError(reports);
    demand(reader.LoadDefaults(models[input.byte() % models.size()]), "the model is in the catalogue");
    reader.Port(1);
    const Byte settings = input.byte();
    const auto chosen = [](Byte bits, int bit) { return Boolean((bits >> bit & 1) != 0); };
    reader.Duplex(chosen(settings, 0));
    reader.DuplexForm(chosen(settings, 1));
    reader.Feeder(chosen(settings, 2));
    reader.Rejecter(chosen(settings, 3));
    reader.Barcode(chosen(settings, 4));
    reader.ReaderGrade(chosen(settings, 5));
    reader.RecognitionMode(chosen(settings, 6) ? kelRecognitionTypeWindow : kelRecognitionTypePage);
    const Byte doings = input.byte();
    const Boolean bPrints = chosen(settings, 7);
    reader.Printer()->Enabled(bPrints);
    reader.Printer()->Active(bPrints);
    reader.Printer()->Distance(input.number());
    reader.RecognitionThreshold(input.byte());
    const Byte habit = input.byte();
    reader.MarkDiscrimination(static_cast<Int16>(habit >> 4));
    setForm(reader, input);
    const Byte keyCode = input.byte();
    if (chosen(doings, 4))
        reader.AnswerKey(answerKey(keyCode));

    const auto host =
        std::make_shared<Host>(reader, Habits{(habit & 1) != 0, (habit & 2) != 0, (habit & 4) != 0, (habit & 8) != 0,
                                              (habit & 16) != 0, static_cast<Int16>(keyCode % 20)});
    const std::uint32_t advice = reader.Advise(host);
    bool stopped = false;
    if (chosen(doings, 2))
        machine.at(std::chrono::milliseconds(50) * input.byte(), [&] {
            stopped = true;
            reader.CancelScan(True);
        });

    const Int32 lSheets = 1 + (doings & 3);
    if (chosen(doings, 3)) {
        Int32 lSheetCount = 0;
        reader.ReadBatch(bPrints, lSheets, lSheetCount);
        demand(lSheetCount >= host->sheets(), "each sheet is counted");
        demand(reader.CancelScan(), "a batch ends with the stop flag");
    } else {
        const bool started = static_cast<bool>(reader.StartReader());
        demand(started || static_cast<bool>(reader.CancelScan()), "a start that failed sets the stop flag");
        demand(started || stopped || reports->count() > 0 || !machine.screen().boxes().empty(),
               "a start that failed says why");
        for (Int32 i = 0; i < lSheets; ++i) {
            const int sheets = host->sheets();
            const bool read = static_cast<bool>(reader.ReadPage(bPrints));
            demand(host->sheets() == sheets + (read ? 1 : 0), "a sheet that counts has its events");
            demand(read || static_cast<bool>(reader.CancelScan()), "a read that failed sets the stop flag");
            reader.RejectPage();
        }
        reader.EndReader();
    }
    demand(host->eachWasReadOnce(), "no event comes twice");
    demand(!reader.AnswerKey(), "the end of a session takes the answer key away");

    if (chosen(doings, 5)) {
        std::string version;
        reader.Firmware(version);
        reader.Locate(0);
    }
    reader.Unadvise(advice);
    reader.SetError(nullptr);
}

} // namespace kel
