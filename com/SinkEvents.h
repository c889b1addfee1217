// SPDX-License-Identifier: MIT
#pragma once

#include "com/EventSinks.h"
#include "reader/ReaderEvents.h"

namespace kel::com {

/// The arrays of a sheet in the forms of Automation.
class SheetArrays;

/// Hands the events of a reader object on to the sinks of its hosts, in the forms of Automation. What a sink changes by
/// reference goes back into the reader. All sinks of an event have the same arrays before them.
class SinkEvents final : public ReaderEvents {
public:
    explicit SinkEvents(EventSinks& sinks) : sinks_(sinks) {}

    /// Brings into the reader what sinks have written so far into the arrays of a `ReadSheet` that is under way: these
    /// are the reader's own, and whoever asks it for them within the event gets what stands there now.
    void takeBack();

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
    SheetArrays* underWay_ = nullptr; // those of a ReadSheet
};

} // namespace kel::com
