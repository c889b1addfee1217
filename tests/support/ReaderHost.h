// SPDX-License-Identifier: MIT
#pragma once

#include "failure/basError.h"
#include "reader/clsKELReader.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kel::test {

/// A sheet as `ReadSheet` brought it.
struct HeardSheet {
    MarkArray side1;
    MarkArray side2;
    TextArray barcodes;
};

/// What a host hears, in its order: the names of the events and "report SOURCE". It can act within each of them.
class RecordingHost final : public ReaderEvents, public ErrorObject {
public:
    void BeforeSheet(Boolean& bInitializePrinter) override
    {
        order.push_back("BeforeSheet");
        if (onBeforeSheet)
            onBeforeSheet(bInitializePrinter);
    }
    void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean& bReject) override
    {
        order.push_back("ReadSheet");
        sheets.push_back({iSide1Array, iSide2Array, sBarcodeArray});
        if (onReadSheet)
            onReadSheet(iSide1Array, iSide2Array, sBarcodeArray, bReject);
    }
    void AfterSheet(Boolean& bCancelScan) override
    {
        order.push_back("AfterSheet");
        if (onAfterSheet)
            onAfterSheet(bCancelScan);
    }
    void BeforePrint(Boolean& bCancel) override
    {
        order.push_back("BeforePrint");
        if (onBeforePrint)
            onBeforePrint(bCancel);
    }
    void AfterPrint() override { order.push_back("AfterPrint"); }
    void TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                       Boolean& bNeedsMoreData) override
    {
        order.push_back("TranslateData");
        if (onTranslateData)
            onTranslateData(oData, iSide1Array, iSide2Array, sBarcodeArray, bNeedsMoreData);
    }
    void GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions) override
    {
        order.push_back("GetQuestionsOnPage");
        if (onGetQuestionsOnPage)
            onGetQuestionsOnPage(iPage, iNumberQuestions);
    }
    Int32 RaiseError(const ErrorReport& report) override
    {
        order.push_back("report " + report.ErrorSource);
        reports.push_back(report);
        return 0;
    }

    std::vector<std::string> order;
    std::vector<HeardSheet> sheets;
    std::vector<ErrorReport> reports;

    std::function<void(Boolean&)> onBeforeSheet;
    std::function<void(MarkArray&, MarkArray&, TextArray&, Boolean&)> onReadSheet;
    std::function<void(Boolean&)> onAfterSheet;
    std::function<void(Boolean&)> onBeforePrint;
    std::function<void(Dictionary&, MarkArray&, MarkArray&, TextArray&, Boolean&)> onTranslateData;
    std::function<void(Int16&, Int16&)> onGetQuestionsOnPage;
};

/// A machine without hardware, a reader object on it and a host that records. Port 1 is the reader's line.
class ReaderHost {
public:
    ReaderHost() : scope_(machine), reader_(std::make_unique<clsKELReader>()), host(std::make_shared<RecordingHost>())
    {
        reader().Advise(host);
        reader().SetError(host);
        reader().Port(1);
    }
    ~ReaderHost() { setErrorObject(nullptr); }
    ReaderHost(const ReaderHost&) = delete;
    ReaderHost& operator=(const ReaderHost&) = delete;

    [[nodiscard]] clsKELReader& reader() { return *reader_; }
    [[nodiscard]] RecordingHost& heard() { return *host; }

    /// The model's defaults, with the device at the far end of its line.
    void connect(kelReaderType model, LineDevice& device)
    {
        machine.attach(1, device);
        reader().LoadDefaults(model);
        reader().Port(1);
    }

    /// The bytes that the host has sent on port 1 since the call before.
    std::string sent()
    {
        const std::string all = machine.line(1).sent();
        const std::string fresh = all.substr(seen_);
        seen_ = all.size();
        return fresh;
    }

    SimulatedPlatform machine;

private:
    PlatformScope scope_;
    std::unique_ptr<clsKELReader> reader_;
    std::size_t seen_ = 0;

public:
    std::shared_ptr<RecordingHost> host;
};

/// Pages of a form: `pages({63, 40})` is 63 for page 1 and 40 for page 2.
[[nodiscard]] inline PageArray pages(std::vector<Int16> entries)
{
    return PageArray::of(1, std::move(entries));
}

} // namespace kel::test
