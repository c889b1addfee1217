// SPDX-License-Identifier: MIT
#pragma once

#include "types/Arrays.h"
#include "types/Boolean.h"
#include "types/Export.h"

namespace kel {

class Dictionary;

/// The events of a reader object. A host overrides those that it needs. All arguments are by reference; arrays are
/// the reader object's own, not copies.
class KEL_PUBLIC ReaderEvents {
public:
    virtual ~ReaderEvents() = default;

    /// At the start of each `ReadPage`, before anything touches the reader. Setting `CancelScan` of the reader
    /// prevents this read. The argument is information only.
    virtual void BeforeSheet(Boolean& bInitializePrinter) { static_cast<void>(bInitializePrinter); }

    /// After a successful read. The host may change the arrays in place, call `RejectPage` or `EjectPage`, fill the
    /// printer's buffers and set its `Active`. A barcode has one byte per character, as it came. `bReject` set True
    /// suppresses only the print.
    virtual void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean& bReject)
    {
        static_cast<void>(iSide1Array);
        static_cast<void>(iSide2Array);
        static_cast<void>(sBarcodeArray);
        static_cast<void>(bReject);
    }

    /// Last step of a successful `ReadPage`; the value that it leaves becomes `CancelScan`.
    virtual void AfterSheet(Boolean& bCancelScan) { static_cast<void>(bCancelScan); }

    /// When the printer is initialized and active; setting `bCancel` skips the print of this sheet.
    virtual void BeforePrint(Boolean& bCancel) { static_cast<void>(bCancel); }

    /// After a print that succeeded.
    virtual void AfterPrint() {}

    /// From readers that deliver records of named fields: the host turns the dictionary into marks and barcodes. It
    /// dimensions arrays that arrive undimensioned. Setting `bNeedsMoreData` asks for a further record first, on
    /// readers that can.
    virtual void TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array,
                               TextArray& sBarcodeArray, Boolean& bNeedsMoreData)
    {
        static_cast<void>(oData);
        static_cast<void>(iSide1Array);
        static_cast<void>(iSide2Array);
        static_cast<void>(sBarcodeArray);
        static_cast<void>(bNeedsMoreData);
    }

    /// While an answer key is sent to the reader: the host stores how many questions page `iPage` holds.
    virtual void GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions)
    {
        static_cast<void>(iPage);
        static_cast<void>(iNumberQuestions);
    }
};

} // namespace kel
