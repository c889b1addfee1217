#include "cli/ScanSession.h"

#include "cli/LoadedSettings.h"
#include "cli/PropertyTable.h"
#include "cli/UsageError.h"
#include "contract/Dictionary.h"
#include "platform/Platform.h"
#include "types/LineText.h"
#include "types/Text.h"

#include <algorithm>
#include <ctime>

namespace kel {

namespace {

std::string today()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[sizeof "2024-01-31"];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d", &local)};
}

bool hasMark(const MarkArray& marks)
{
    return std::any_of(marks.elements().begin(), marks.elements().end(), [](Int16 mark) { return mark != 0; });
}

Json jsonItem(const DictionaryItem& item)
{
    if (const auto* number = std::get_if<Int32>(&item))
        return *number;
    if (const auto* text = std::get_if<std::string>(&item))
        return textOfLine(*text);
    return nullptr;
}

std::string keyName(const DictionaryKey& key)
{
    const auto* number = std::get_if<Int32>(&key);
    return number ? CStr(*number) : textOfLine(std::get<std::string>(key));
}

Json jsonRecord(const Dictionary& fields)
{
    Json record = Json::object();
    const std::vector<DictionaryKey> keys = fields.Keys();
    const std::vector<DictionaryItem> items = fields.Items();
    for (std::size_t i = 0; i < keys.size(); ++i)
        record[keyName(keys[i])] = jsonItem(items[i]);
    return record;
}

/// An answer stands under its question's number, and questions without one are left out.
bool hasAnswer(const Dictionary& fields)
{
    const std::vector<DictionaryKey> keys = fields.Keys();
    return std::any_of(keys.begin(), keys.end(),
                       [](const DictionaryKey& key) { return std::holds_alternative<Int32>(key); });
}

/// A text to print, as it goes over the line.
std::string printText(const std::string& text)
{
    if (const auto line = lineOfText(text))
        return *line;
    throw UsageError("'" + text + "' cannot be printed: a reader takes the characters of Latin-1 only.");
}

/// The host of one scan: it hears the reader's events and its reports, and makes the scan's events of them.
class ScanHost final : public ReaderEvents {
public:
    ScanHost(clsKELReader& reader, const ScanRequest& request, ScanSink& sink, const std::function<bool()>& stopWanted)
        : reader_(reader), request_(request), sink_(sink), stopWanted_(stopWanted)
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
        stopIfWanted(); // it may have come while the read could not hear it
        sheet_ = {};
        sheet_.sheet = sheets_ + 1;
        sheet_.side1 = iSide1Array;
        sheet_.side2 = iSide2Array;
        sheet_.barcodes = sBarcodeArray;
        fillPrinter();

        const bool blank = !hasMark(iSide1Array) && !hasMark(iSide2Array) && !answered_;
        if ((request_.rejectBlank && blank) || request_.rejectSheets.contains(sheet_.sheet)) {
            reader_.RejectPage();
            bReject = True;
            sheet_.rejected = true;
        }
    }

    void TranslateData(Dictionary& oData, MarkArray&, MarkArray&, TextArray&, Boolean&) override
    {
        record_ = jsonRecord(oData);
        answered_ = hasAnswer(oData);
    }

    void GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions) override
    {
        iNumberQuestions = request_.answerKey ? request_.answerKey->questionsOn(iPage) : Int16{0};
    }

    void AfterPrint() override { sheet_.printed = true; }

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
        const PrintRequest& print = request_.print;
        if (print.print1)
            reader_.Printer()->Buffer1(filledIn(printText(*print.print1), sheet_.sheet, barcode));
        if (print.print2)
            reader_.Printer()->Buffer2(filledIn(printText(*print.print2), sheet_.sheet, barcode));
        if (print.print3)
            reader_.Printer()->Buffer3(filledIn(printText(*print.print3), sheet_.sheet, barcode));
    }

    clsKELReader& reader_;
    const ScanRequest& request_;
    ScanSink& sink_;
    const std::function<bool()>& stopWanted_;
    ScannedSheet sheet_;
    std::optional<Json> record_;
    bool answered_ = false; ///< by a reader that sends answers in place of marks
    Int32 sheets_ = 0;
    bool readingBegan_ = false;
};

/// The host's error object: every report becomes an event.
class ReportsToSink final : public ErrorObject {
public:
    explicit ReportsToSink(ScanSink& sink) : sink_(sink) {}

    Int32 RaiseError(const ErrorReport& report) override
    {
        failures_.push_back(reportedFailure(report));
        sink_.failure(failures_.back());
        return 0;
    }

    [[nodiscard]] const std::vector<ReportedFailure>& failures() const { return failures_; }

private:
    ScanSink& sink_;
    std::vector<ReportedFailure> failures_;
};

/// What a scan ties to the reader and to the process, for as long as it runs.
class ScanTies {
public:
    ScanTies(clsKELReader& reader, std::shared_ptr<ErrorObject> errors, const std::shared_ptr<ScanHost>& host)
        : reader_(reader), cookie_(reader.Advise(host))
    {
        reader_.SetError(std::move(errors));
        platform().pump().hostPump([host] { host->stopIfWanted(); });
    }

    ~ScanTies()
    {
        platform().pump().hostPump({});
        reader_.SetError(nullptr);
        reader_.Unadvise(cookie_);
    }

    ScanTies(const ScanTies&) = delete;
    ScanTies& operator=(const ScanTies&) = delete;

private:
    clsKELReader& reader_;
    std::uint32_t cookie_;
};

} // namespace

std::string filledIn(std::string text, Int32 sheet, const std::string& barcode)
{
    if (text.find('{') == std::string::npos)
        return text;
    // The barcode last: what a sheet says is never taken for a placeholder.
    text = replaceAll(text, "{date}", today());
    text = replaceAll(text, "{sheet}", CStr(sheet));
    return replaceAll(text, "{barcode}", barcode);
}

std::vector<ReportedFailure> prepareReader(clsKELReader& reader, const ScanRequest& request)
{
    std::vector<ReportedFailure> failures;
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

ScanResult runScan(clsKELReader& reader, const ScanRequest& request, ScanSink& sink,
                   const std::function<bool()>& stopWanted)
{
    const auto host = std::make_shared<ScanHost>(reader, request, sink, stopWanted);
    const auto reports = std::make_shared<ReportsToSink>(sink);
    const ScanTies ties(reader, reports, host);

    Int32 lSheetCount = 0;
    const bool result(reader.ReadBatch(request.print.wanted() ? True : False, request.maxSheets, lSheetCount));

    // A batch answers False when the reader did not start.
    ScanResult outcome;
    outcome.end = {.started = result || host->readingBegan(),
                   .sheets = host->sheets(),
                   .cancelScan = static_cast<bool>(reader.CancelScan()),
                   .result = result};
    sink.end(outcome.end);
    outcome.failures = reports->failures();
    return outcome;
}

} // namespace kel
