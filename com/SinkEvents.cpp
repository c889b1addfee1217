// SPDX-License-Identifier: MIT
#include "com/SinkEvents.h"

#include "com/SafeArrays.h"
#include "com/ScriptingDictionary.h"

#include <array>
#include <utility>

namespace kel::com {

namespace {

// The events' numbers.
constexpr DISPID kBeforeSheet = 1;
constexpr DISPID kReadSheet = 2;
constexpr DISPID kAfterSheet = 3;
constexpr DISPID kBeforePrint = 4;
constexpr DISPID kAfterPrint = 5;
constexpr DISPID kTranslateData = 6;
constexpr DISPID kGetQuestionsOnPage = 7;

VARIANT byReference(VARTYPE type, void* to)
{
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = static_cast<VARTYPE>(VT_BYREF | type);
    argument.byref = to;
    return argument;
}

/// A truth value that sinks may change.
class Flag {
public:
    explicit Flag(Boolean& value) : value_(value), there_(value.bits()) {}
    [[nodiscard]] VARIANT argument() { return byReference(VT_BOOL, &there_); }
    void takeBack() { value_ = Boolean::fromBits(there_); }

private:
    Boolean& value_;
    VARIANT_BOOL there_;
};

} // namespace

/// The arrays of a sheet, which sinks may change.
class SheetArrays {
public:
    SheetArrays(MarkArray& side1, MarkArray& side2, TextArray& barcodes)
        : side1_(side1), side2_(side2), barcodes_(barcodes), side1There_(side1), side2There_(side2),
          barcodesThere_(barcodes)
    {
    }
    [[nodiscard]] VARIANT side1() { return byReference(VT_ARRAY | VT_I2, side1There_.place()); }
    [[nodiscard]] VARIANT side2() { return byReference(VT_ARRAY | VT_I2, side2There_.place()); }
    [[nodiscard]] VARIANT barcodes() { return byReference(VT_ARRAY | VT_BSTR, barcodesThere_.place()); }
    void takeBack()
    {
        side1_ = markArrayOf(side1There_.get());
        side2_ = markArrayOf(side2There_.get());
        barcodes_ = textArrayOf(barcodesThere_.get());
    }

private:
    MarkArray& side1_;
    MarkArray& side2_;
    TextArray& barcodes_;
    OwnedArray side1There_;
    OwnedArray side2There_;
    OwnedArray barcodesThere_;
};

void SinkEvents::takeBack()
{
    if (underWay_)
        underWay_->takeBack();
}

void SinkEvents::raiseWithFlag(DISPID event, Boolean& flag)
{
    Flag there(flag);
    const std::array arguments{there.argument()};
    sinks_.raise(event, arguments);
    there.takeBack();
}

void SinkEvents::BeforeSheet(Boolean& bInitializePrinter)
{
    raiseWithFlag(kBeforeSheet, bInitializePrinter);
}

void SinkEvents::ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean& bReject)
{
    if (sinks_.isEmpty())
        return;
    SheetArrays sheet(iSide1Array, iSide2Array, sBarcodeArray);
    Flag reject(bReject);
    const std::array arguments{sheet.side1(), sheet.side2(), sheet.barcodes(), reject.argument()};
    SheetArrays* const outer = std::exchange(underWay_, &sheet);
    sinks_.raise(kReadSheet, arguments);
    underWay_ = outer;
    sheet.takeBack();
    reject.takeBack();
}

void SinkEvents::AfterSheet(Boolean& bCancelScan)
{
    raiseWithFlag(kAfterSheet, bCancelScan);
}

void SinkEvents::BeforePrint(Boolean& bCancel)
{
    raiseWithFlag(kBeforePrint, bCancel);
}

void SinkEvents::AfterPrint()
{
    sinks_.raise(kAfterPrint, {});
}

void SinkEvents::TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array,
                               TextArray& sBarcodeArray, Boolean& bNeedsMoreData)
{
    if (sinks_.isEmpty())
        return;
    // A sink that puts another object there has it for the sinks after it.
    IDispatch* record = filledScriptingDictionary(oData).detach();
    SheetArrays sheet(iSide1Array, iSide2Array, sBarcodeArray);
    Flag needsMoreData(bNeedsMoreData);
    const std::array arguments{byReference(VT_DISPATCH, &record), sheet.side1(), sheet.side2(), sheet.barcodes(),
                               needsMoreData.argument()};
    sinks_.raise(kTranslateData, arguments);
    const auto release = ComPtr<IDispatch>::owning(record);
    sheet.takeBack();
    needsMoreData.takeBack();
}

void SinkEvents::GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions)
{
    const std::array arguments{byReference(VT_I2, &iPage), byReference(VT_I2, &iNumberQuestions)};
    sinks_.raise(kGetQuestionsOnPage, arguments);
}

} // namespace kel::com
