// SPDX-License-Identifier: MIT
#include "python/Batch.h"

namespace kel::python {

void Batch::advance()
{
    if (std::exchange(begun_, true))
        worker_.post([this] { goesOn_ = true; });
    else
        worker_.post([this] { run(); });
}

std::shared_ptr<HeldSheet> Batch::current()
{
    if (current_ && done_) {
        current_->sheet.rejected = current_->sheet.rejected || done_->rejected;
        current_->sheet.printed = done_->printed;
        current_->sheet.printedLines = done_->printedLines;
    }
    if (current_)
        current_->inReader = false;
    done_.reset();
    current_ = ended_ ? nullptr : next_;
    return current_;
}

void Batch::run()
{
    try {
        read_(*this);
    } catch (...) {
        thrown_ = std::current_exception();
    }
    ended_ = true;
    news_.give();
}

void Batch::readBegins()
{
    notes_.insert(notes_.end(), pending_.begin(), pending_.end());
    pending_.clear();
}

HeldSheet& Batch::deliver(host::Sheet sheet)
{
    readBegins();
    ++delivered_;
    next_ = std::make_shared<HeldSheet>(HeldSheet{.sheet = std::move(sheet)});
    goesOn_ = false;
    news_.give();
    worker_.serveUntil(goesOn_);
    return *next_;
}

void Batch::keep(std::exception_ptr thrown)
{
    thrown_ = std::move(thrown);
    stopWanted_ = true;
}

void Batch::sheet(const host::Sheet& event)
{
    if (atReadSheet)
        done_ = event;
    else
        deliver(event);
}

void Batch::end(const host::BatchEnd&)
{
    // A batch that came to its number of sheets, or was stopped, was not ended by what was reported last.
    if (stopWanted_ || (maxSheets >= 0 && delivered_ >= maxSheets))
        readBegins();
}

void SheetListener::BeforeSheet(Boolean&)
{
    batch_.readBegins();
    record_.reset();
    if (batch_.isStopWanted())
        reader_.CancelScan(True);
}

void SheetListener::TranslateData(Dictionary& oData, MarkArray&, MarkArray&, TextArray&, Boolean& bNeedsMoreData)
{
    record_ = oData;
    if (!moreData_)
        return;
    try {
        bNeedsMoreData = moreData_(oData) ? True : False;
    } catch (...) {
        bNeedsMoreData = False;
        batch_.keep(std::current_exception());
    }
}

void SheetListener::ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                              Boolean& bReject)
{
    const Reference<clsKELReaderPrinter> printer = reader_.Printer();
    if (printer) { // the texts of the sheet before are not this one's
        printer->Buffer1({});
        printer->Buffer2({});
        printer->Buffer3({});
    }
    host::Sheet sheet;
    sheet.number = ++sheets_;
    sheet.side1 = iSide1Array;
    sheet.side2 = iSide2Array;
    sheet.side1TimingMarks = reader_.Side1TimingMarks();
    sheet.side2TimingMarks = reader_.Side2TimingMarks();
    sheet.barcodes = sBarcodeArray;
    sheet.record = std::move(record_);
    const HeldSheet& held = batch_.deliver(std::move(sheet));
    toPrint_ = held.toPrint;
    if (held.sheet.rejected)
        bReject = True;
    if (batch_.isStopWanted())
        reader_.CancelScan(True);
}

void SheetListener::BeforePrint(Boolean& bCancel)
{
    if (!toPrint_)
        bCancel = True;
}

void SheetListener::AfterSheet(Boolean& bCancelScan)
{
    if (batch_.isStopWanted())
        bCancelScan = True;
}

} // namespace kel::python
