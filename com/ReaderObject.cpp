// SPDX-License-Identifier: MIT
#include "com/ReaderObject.h"

#include "com/CarrierObjects.h"
#include "com/FormObjects.h"
#include "com/LateBound.h"
#include "com/LateBoundAnswerKey.h"
#include "com/LateBoundErrorObject.h"
#include "com/ListEnumerator.h"
#include "com/PrinterObject.h"
#include "com/ProfileObjects.h"
#include "com/SafeArrays.h"
#include "failure/guarded.h"

#include <olectl.h>

namespace kel::com {

namespace {

struct GivePoint {
    static IConnectionPoint* give(const ComPtr<IConnectionPoint>& point)
    {
        return ComPtr<IConnectionPoint>(point).detach();
    }
};

/// The window that owns the options dialog: a form of the host's, which has a member `hWnd`, or a window's handle.
HWND windowOf(const VARIANT& parent)
{
    if (isMissing(parent))
        return nullptr;
    const OleVariant told = OleVariant::copyOf(parent);
    OleVariant handle = told;
    if (told.type() == VT_DISPATCH || told.type() == VT_UNKNOWN) {
        const ComPtr<IDispatch> form = told.asObject();
        if (!form)
            return nullptr;
        handle = LateBound(form).get(L"hWnd");
    }
    return reinterpret_cast<HWND>(static_cast<INT_PTR>(handle.as(VT_I8).get().llVal));
}

using ConnectionPoints = ListEnumerator<IEnumConnectionPoints, &IID_IEnumConnectionPoints, IConnectionPoint*,
                                        ComPtr<IConnectionPoint>, GivePoint>;

} // namespace

ReaderObject::ReaderObject(std::shared_ptr<clsKELReader> native)
    : Wrapper(std::move(native), CLSID_clsKELReader), sinks_(*this, DIID___clsKELReader),
      events_(std::make_shared<SinkEvents>(sinks_)), cookie_(this->native().Advise(events_))
{
}

ReaderObject::~ReaderObject()
{
    native().Unadvise(cookie_);
}

void* ReaderObject::ownInterface(REFIID asked)
{
    return IsEqualIID(asked, IID_IConnectionPointContainer) ? static_cast<IConnectionPointContainer*>(this) : nullptr;
}

STDMETHODIMP ReaderObject::EnumConnectionPoints(IEnumConnectionPoints** points)
{
    return atBoundary(IID_IConnectionPointContainer,
                      [&] { place(points) = new ConnectionPoints({ComPtr<IConnectionPoint>(&sinks_)}); });
}

STDMETHODIMP ReaderObject::FindConnectionPoint(REFIID iid, IConnectionPoint** point)
{
    if (!point)
        return E_POINTER;
    *point = nullptr;
    if (!IsEqualIID(iid, DIID___clsKELReader))
        return CONNECT_E_NOCONNECTION;
    *point = ComPtr<IConnectionPoint>(&sinks_).detach();
    return S_OK;
}

// Objects

STDMETHODIMP ReaderObject::get_Barcodes(_clsKELReaderBarcodes** value)
{
    return atBoundary(iid(), [&] { place(value) = objectOf<BarcodesObject>(native().Barcodes()); });
}

STDMETHODIMP ReaderObject::putref_Barcodes(_clsKELReaderBarcodes* value)
{
    return atBoundary(iid(), [&] { native().Barcodes(nativeOf<clsKELReaderBarcodes>(value)); });
}

STDMETHODIMP ReaderObject::get_Windows(_clsKELReaderWindows** value)
{
    return atBoundary(iid(), [&] { place(value) = objectOf<WindowsObject>(native().Windows()); });
}

STDMETHODIMP ReaderObject::putref_Windows(_clsKELReaderWindows* value)
{
    return atBoundary(iid(), [&] { native().Windows(nativeOf<clsKELReaderWindows>(value)); });
}

STDMETHODIMP ReaderObject::get_Profiles(_clsKELReaderProfiles** value)
{
    return atBoundary(iid(), [&] { place(value) = objectOf<ProfilesObject>(native().Profiles()); });
}

STDMETHODIMP ReaderObject::putref_Profiles(_clsKELReaderProfiles* value)
{
    return atBoundary(iid(), [&] { native().Profiles(nativeOf<clsKELReaderProfiles>(value)); });
}

STDMETHODIMP ReaderObject::get_Printer(_clsKELReaderPrinter** value)
{
    return atBoundary(iid(), [&] { place(value) = objectOf<PrinterObject>(native().Printer()); });
}

STDMETHODIMP ReaderObject::putref_Printer(_clsKELReaderPrinter* value)
{
    return atBoundary(iid(), [&] { native().Printer(nativeOf<clsKELReaderPrinter>(value)); });
}

STDMETHODIMP ReaderObject::get_fComm(IDispatch** value)
{
    return atBoundary(iid(), [&] { place(value) = carrierObjectOf(native().fComm()); });
}

STDMETHODIMP ReaderObject::putref_fComm(IDispatch* value)
{
    return atBoundary(iid(), [&] { native().fComm(carrierOf(value)); });
}

STDMETHODIMP ReaderObject::get_AnswerKey(IDispatch** value)
{
    return atBoundary(iid(), [&] {
        place(value) = nullptr;
        const Reference<AnswerKeyObject> key = native().AnswerKey();
        if (const auto* const host = dynamic_cast<const LateBoundAnswerKey*>(key.shared().get()))
            *value = ComPtr<IDispatch>(host->object()).detach();
    });
}

STDMETHODIMP ReaderObject::putref_AnswerKey(IDispatch* value)
{
    return atBoundary(iid(), [&] {
        if (value)
            native().AnswerKey(makeReference<LateBoundAnswerKey>(ComPtr<IDispatch>(value)));
        else
            native().AnswerKey(nullptr);
    });
}

STDMETHODIMP ReaderObject::get_HelpID(::kelReaderHelpID eHelpIDType, LONG* value)
{
    return give<Int32>(value, [&] { return native().HelpID(Automation<kelReaderHelpID>::take(eHelpIDType)); });
}

STDMETHODIMP ReaderObject::put_HelpID(::kelReaderHelpID eHelpIDType, LONG value)
{
    return atBoundary(iid(), [&] { native().HelpID(Automation<kelReaderHelpID>::take(eHelpIDType), value); });
}

// Arrays

/// Sets an array of pages. One that is none such, by its shape or by its elements, is reported where it is set.
HRESULT ReaderObject::putPages(SAFEARRAY** value, const char* source,
                               void (clsKELReader::*set)(const PageArray&)) noexcept
{
    if (!value)
        return E_POINTER;
    return session([&] { guarded(source, [&] { (native().*set)(pageArrayOf(*value)); }); });
}

STDMETHODIMP ReaderObject::get_Side1Array(SAFEARRAY** value)
{
    return atBoundary(iid(), [&] {
        events_->takeBack();
        place(value) = safeArrayOf(native().Side1Array());
    });
}

STDMETHODIMP ReaderObject::get_Side2Array(SAFEARRAY** value)
{
    return atBoundary(iid(), [&] {
        events_->takeBack();
        place(value) = safeArrayOf(native().Side2Array());
    });
}

STDMETHODIMP ReaderObject::get_Side1Rows(SAFEARRAY** value)
{
    return atBoundary(iid(), [&] { place(value) = safeArrayOf(native().Side1Rows()); });
}

STDMETHODIMP ReaderObject::put_Side1Rows(SAFEARRAY** value)
{
    return putPages(value, "KELReader81 - clsKELReader.Side1Rows", &clsKELReader::Side1Rows);
}

STDMETHODIMP ReaderObject::get_Side1Cols(SAFEARRAY** value)
{
    return atBoundary(iid(), [&] { place(value) = safeArrayOf(native().Side1Cols()); });
}

STDMETHODIMP ReaderObject::put_Side1Cols(SAFEARRAY** value)
{
    return putPages(value, "KELReader81 - clsKELReader.Side1Cols", &clsKELReader::Side1Cols);
}

STDMETHODIMP ReaderObject::get_Side2Rows(SAFEARRAY** value)
{
    return atBoundary(iid(), [&] { place(value) = safeArrayOf(native().Side2Rows()); });
}

STDMETHODIMP ReaderObject::put_Side2Rows(SAFEARRAY** value)
{
    return putPages(value, "KELReader81 - clsKELReader.Side2Rows", &clsKELReader::Side2Rows);
}

STDMETHODIMP ReaderObject::get_Side2Cols(SAFEARRAY** value)
{
    return atBoundary(iid(), [&] { place(value) = safeArrayOf(native().Side2Cols()); });
}

STDMETHODIMP ReaderObject::put_Side2Cols(SAFEARRAY** value)
{
    return putPages(value, "KELReader81 - clsKELReader.Side2Cols", &clsKELReader::Side2Cols);
}

// The session

/// Runs a method whose result is a truth value.
template <class Run>
HRESULT ReaderObject::answer(VARIANT_BOOL* result, Run&& run) noexcept
{
    if (!result)
        return E_POINTER;
    return session([&] { *result = run().bits(); });
}

STDMETHODIMP ReaderObject::StartReader(VARIANT_BOOL* result)
{
    return answer(result, [&] { return native().StartReader(); });
}

STDMETHODIMP ReaderObject::ReadPage(VARIANT_BOOL InitializePrinter, VARIANT_BOOL* result)
{
    return answer(result, [&] { return native().ReadPage(Boolean::fromBits(InitializePrinter)); });
}

STDMETHODIMP ReaderObject::ReadBatch(VARIANT_BOOL InitializePrinter, LONG lMaxSheets, LONG* lSheetCount,
                                     VARIANT_BOOL* result)
{
    return answer(result, [&] {
        // The host may look at its own count while the batch runs.
        static_assert(sizeof(LONG) == sizeof(Int32));
        auto& count = reinterpret_cast<Int32&>(place(lSheetCount));
        return native().ReadBatch(Boolean::fromBits(InitializePrinter), lMaxSheets, count);
    });
}

STDMETHODIMP ReaderObject::EndReader(VARIANT_BOOL* result)
{
    return answer(result, [&] { return native().EndReader(); });
}

STDMETHODIMP ReaderObject::RejectPage()
{
    return session([&] { native().RejectPage(); });
}

STDMETHODIMP ReaderObject::EjectPage()
{
    return session([&] { native().EjectPage(); });
}

STDMETHODIMP ReaderObject::LoadDefaults(::kelReaderType eReaderType, VARIANT_BOOL* result)
{
    return answer(result, [&] { return native().LoadDefaults(Automation<kelReaderType>::take(eReaderType)); });
}

STDMETHODIMP ReaderObject::LoadSettings(::kelReaderRegistryKey lRegistryKey, BSTR sRegistrySubKey, VARIANT_BOOL* result)
{
    return answer(result, [&] {
        return native().LoadSettings(Automation<kelReaderRegistryKey>::take(lRegistryKey), textOf(sRegistrySubKey));
    });
}

STDMETHODIMP ReaderObject::SaveSettings(::kelReaderRegistryKey lRegistryKey, BSTR sRegistrySubKey, VARIANT_BOOL* result)
{
    return answer(result, [&] {
        return native().SaveSettings(Automation<kelReaderRegistryKey>::take(lRegistryKey), textOf(sRegistrySubKey));
    });
}

STDMETHODIMP ReaderObject::SetError(IDispatch** oErr, VARIANT_BOOL* result)
{
    return answer(result, [&] {
        std::shared_ptr<ErrorObject> object;
        if (place(oErr))
            object = std::make_shared<LateBoundErrorObject>(ComPtr<IDispatch>(*oErr));
        return native().SetError(std::move(object));
    });
}

STDMETHODIMP ReaderObject::ShowOptions(VARIANT fParent, VARIANT_BOOL* result)
{
    return answer(result, [&] { return native().ShowOptions(windowOf(fParent)); });
}

STDMETHODIMP ReaderObject::Locate(short iStartPort, VARIANT_BOOL* result)
{
    return answer(result, [&] { return native().Locate(iStartPort); });
}

STDMETHODIMP ReaderObject::Firmware(BSTR* sReturn, VARIANT_BOOL* result)
{
    return answer(result, [&] {
        std::string version = sheetTextOf(place(sReturn));
        const Boolean told = native().Firmware(version);
        if (told)
            OwnedText(std::exchange(*sReturn, newSheetText(version)));
        return told;
    });
}

} // namespace kel::com
