// SPDX-License-Identifier: MIT
#include "host/Batch.h"

#include "host/LoadedSettings.h"
#include "host/LocalTime.h"
#include "host/PropertyTable.h"
#include "host/Reports.h"
#include "host/UsageError.h"
#include "platform/Platform.h"
#include "platform/StopCarrier.h"
#include "types/LineText.h"
#include "types/Text.h"

#include <algorithm>

namespace kel::host {

namespace {

bool hasMark(const MarkArray& marks)
{
    return std::any_of(marks.elements().begin(), marks.elements().end(), [](Int16 mark) { return mark != 0; });
}

/// An answer stands under its question's number, and questions without one are left out.
bool hasAnswer(const Dictionary& fields)
{
    const std::vector<DictionaryKey> keys = fields.Keys();
    return std::any_of(keys.begin(), keys.end(),
                       [](const DictionaryKey& key) { return std::holds_alternative<Int32>(key); });
}

/// The longest printer of them all prints 135 characters; in a text, what stands for the barcode is longer than that.
constexpr std::size_t kLongestPrintText = 1000;

/// A text to print, as it goes over the line.
std::string printText(const std::string& text)
{
    const auto line = lineOfText(text);
    const std::size_t length = line ? line->size() : text.size();
    if (length > kLongestPrintText)
        throw UsageError("A text to print has " + CStr(static_cast<std::int64_t>(length)) +
                         " characters; the limit is " + CStr(static_cast<std::int64_t>(kLongestPrintText)) + ".");
    if (line)
        return *line;
    throw UsageError("'" + text + "' cannot be printed: a reader prints only characters of Latin-1.");
}

/// The host of one scan: it receives the reader's events and reports, and makes the scan's events from them.
class Listener final : public ReaderEvents {
public:
    Listener(clsKELReader& reader, const Request& request, Events& sink, std::function<bool()> stopWanted)
        : reader_(reader), request_(request), sink_(sink), stopWanted_(std::move(stopWanted))
    {
    }

    void BeforeSheet(Boolean&) override
    {
        readingBegan_ = true;
        record_.reset();
        answered_ = false;
        stopIfWanted();
    }

    void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean& bReject) override
    {
        stopIfWanted(); // it may have come when the read could not notice it
        sheet_ = {};
        sheet_.number = sheets_ + 1;
        sheet_.side1 = iSide1Array;
        sheet_.side2 = iSide2Array;
        sheet_.barcodes = sBarcodeArray;
        fillPrinter();

        const bool blank = !hasMark(iSide1Array) && !hasMark(iSide2Array) && !answered_;
        if ((request_.rejectBlank && blank) || request_.rejectSheets.contains(sheet_.number)) {
            reader_.RejectPage();
            bReject = True;
            sheet_.rejected = true;
        }
    }

    void TranslateData(Dictionary& oData, MarkArray&, MarkArray&, TextArray&, Boolean&) override
    {
        record_ = oData;
        answered_ = hasAnswer(oData);
    }

    void GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions) override
    {
        iNumberQuestions = request_.answerKey ? request_.answerKey->questionsOn(iPage) : Int16{0};
    }

    void AfterPrint() override
    {
        sheet_.printed = true;
        for (const std::string& line :
             {reader_.Printer()->Buffer1(), reader_.Printer()->Buffer2(), reader_.Printer()->Buffer3()}) {
            if (!line.empty())
                sheet_.printedLines.push_back(line);
        }
    }

    void AfterSheet(Boolean& bCancelScan) override
    {
        ++sheets_;
        sheet_.side1TimingMarks = reader_.Side1TimingMarks();
        sheet_.side2TimingMarks = reader_.Side2TimingMarks();
        sheet_.record = std::move(record_);
        sink_.sheet(sheet_);
        if (stopWanted_ && stopWanted_())
            bCancelScan = True;
    }

    void stopIfWanted()
    {
        if (stopWanted_ && stopWanted_())
            reader_.CancelScan(True);
    }

    [[nodiscard]] bool readingBegan() const { return readingBegan_; }
    [[nodiscard]] Int32 sheets() const { return sheets_; }

private:
    void fillPrinter()
    {
        const std::string barcode = sheet_.barcodes.elements().empty() ? "" : sheet_.barcodes.elements().front();
        const Int32 number = request_.sheetsBefore + sheet_.number;
        const Print& print = request_.print;
        if (print.print1)
            reader_.Printer()->Buffer1(filledIn(printText(*print.print1), number, barcode));
        if (print.print2)
            reader_.Printer()->Buffer2(filledIn(printText(*print.print2), number, barcode));
        if (print.print3)
            reader_.Printer()->Buffer3(filledIn(printText(*print.print3), number, barcode));
    }

    clsKELReader& reader_;
    const Request& request_;
    Events& sink_;
    std::function<bool()> stopWanted_;
    Sheet sheet_;
    std::optional<Dictionary> record_;
    bool answered_ = false; ///< by a reader that sends answers instead of marks
    Int32 sheets_ = 0;
    bool readingBegan_ = false;
};

} // namespace

std::string filledIn(std::string text, Int32 sheet, const std::string& barcode)
{
    if (text.find('{') == std::string::npos)
        return text;
    // The barcode last: what a sheet says is never taken for a placeholder.
    text = replaceAll(text, "{date}", localTime("%Y-%m-%d"));
    text = replaceAll(text, "{sheet}", CStr(sheet));
    return replaceAll(text, "{barcode}", barcode);
}

std::vector<Failure> prepareReader(clsKELReader& reader, const Request& request)
{
    std::vector<Failure> failures;
    if (request.settings)
        failures = loadSettings(reader, *request.settings);
    else if (request.model)
        reader.LoadDefaults(*request.model);
    if (request.settings && request.model)
        reader.ReaderType(*request.model);
    applyForm(request.form, reader);
    if (request.answerKey)
        reader.AnswerKey(request.answerKey->key);
    if (request.port)
        reader.Port(*request.port);
    for (const std::string& assignment : request.assignments)
        applyAssignment(reader, assignment);
    for (const auto* text : {&request.print.print1, &request.print.print2, &request.print.print3}) {
        if (*text)
            static_cast<void>(printText(**text));
    }
    if (request.print.wanted()) {
        reader.Printer()->Enabled(True);
        reader.Printer()->Active(True);
        if (request.print.distance)
            reader.Printer()->Distance(*request.print.distance);
    }
    return failures;
}

/// What a batch ties to the reader and to the thread, for as long as it runs.
class Session::Ties {
public:
    Ties(clsKELReader& reader, const Request& request, Events& sink, const std::function<bool()>& stopWanted,
         StopAsked asked)
        : reader_(reader), listener_(std::make_shared<Listener>(reader, request, sink, stopWanted)),
          cookie_(reader.Advise(listener_)), reports_([this, &sink](const Failure& failure) {
              failures_.push_back(failure);
              sink.failure(failure);
          }),
          pumps_(stopWanted != nullptr && asked == StopAsked::InEachTurn)
    {
        if (stopWanted) {
            carrier_ = reader.fComm();
            reader.fComm(makeReference<StopCarrier>(carrier_, stopWanted));
        }
        if (pumps_)
            platform().pump().hostPump([listener = listener_] { listener->stopIfWanted(); });
    }

    ~Ties()
    {
        if (pumps_)
            platform().pump().hostPump({});
        if (carrier_)
            reader_.fComm(carrier_);
        reader_.Unadvise(cookie_);
    }

    Ties(const Ties&) = delete;
    Ties& operator=(const Ties&) = delete;

    [[nodiscard]] const Listener& listener() const { return *listener_; }
    [[nodiscard]] const std::vector<Failure>& failures() const { return failures_; }

private:
    clsKELReader& reader_;
    std::shared_ptr<Listener> listener_;
    std::uint32_t cookie_;
    std::vector<Failure> failures_;
    Reports reports_;
    bool pumps_;
    Reference<Carrier> carrier_; // the one that the reader gets back
};

Result runScan(clsKELReader& reader, const Request& request, Events& sink, const std::function<bool()>& stopWanted,
               StopAsked asked)
{
    const Session::Ties ties(reader, request, sink, stopWanted, asked);
    Int32 lSheetCount = 0;
    const bool result(reader.ReadBatch(request.print.wanted() ? True : False, request.maxSheets, lSheetCount));

    // A batch answers False when the reader did not start.
    Result outcome;
    outcome.end = {.started = result || ties.listener().readingBegan(),
                   .sheets = ties.listener().sheets(),
                   .cancelScan = static_cast<bool>(reader.CancelScan()),
                   .result = result};
    sink.end(outcome.end);
    outcome.failures = ties.failures();
    return outcome;
}

Session::Session(clsKELReader& reader, const Request& request, Events& sink)
    : reader_(reader), request_(request),
      ties_(std::make_unique<Ties>(reader, request, sink, nullptr, StopAsked::InEachTurn))
{
}

Session::~Session()
{
    end();
}

bool Session::start()
{
    open_ = true;
    if (reader_.StartReader())
        return true;
    end();
    return false;
}

bool Session::next()
{
    const auto wanted = [&] { return request_.maxSheets < 0 || reads_ < request_.maxSheets; };
    const Int32 before = ties_->listener().sheets();
    while (open_ && !reader_.CancelScan() && wanted()) {
        lastRead_ = static_cast<bool>(reader_.ReadPage(request_.print.wanted() ? True : False));
        ++reads_;
        if (ties_->listener().sheets() != before)
            return true;
    }
    end();
    return false;
}

void Session::end()
{
    if (!open_)
        return;
    open_ = false;
    reader_.CancelScan(True);
    // The last sheet of a batch is not left in the reader; one that was decided on is out already.
    if (lastRead_)
        reader_.EjectPage();
    reader_.EndReader();
}

const std::vector<Failure>& Session::failures() const
{
    return ties_->failures();
}

} // namespace kel::host
