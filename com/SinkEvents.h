#pragma once

#include "com/EventSinks.h"
#include "reader/ReaderEvents.h"

namespace kel::com {

/// Hands the events of a reader object on to the sinks of its hosts, in the forms of Automation. What a sink changes by
/// reference goes back into the reader.
class SinkEvents final : public ReaderEvents {
public:
    explicit SinkEvents(EventSinks& sinks) : sinks_(sinks) {}

    void BeforeSheet(Boolean& bInitializePrinter) override;
    void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean& bReject) override;
    void AfterSheet(Boolean& bCancelScan) override;
    void BeforePrint(Boolean& bCancel) override;
    void AfterPrint() override;
    void TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                       Boolean& bNeedsMoreData) override;
    void GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions) override;

private:
    void raiseWithFlag(DISPID event, Boolean& flag);

    EventSinks& sinks_;
    ComPtr<IDispatch> record_; // one for all records of a read
};

} // namespace kel::com
