// SPDX-License-Identifier: MIT
#pragma once

#include "com/SinkEvents.h"
#include "com/Wrapper.h"
#include "reader/clsKELReader.h"

namespace kel::com {

/// The reader for a host, with its events.
class ReaderObject final : public Wrapper<_clsKELReader, clsKELReader>, public IConnectionPointContainer {
public:
    explicit ReaderObject(std::shared_ptr<clsKELReader> native);
    ~ReaderObject() override;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override { return Wrapper::QueryInterface(iid, object); }
    STDMETHODIMP_(ULONG) AddRef() override { return acquire(); }
    STDMETHODIMP_(ULONG) Release() override { return release(); }

    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

    STDMETHODIMP get_Barcodes(_clsKELReaderBarcodes** value) override;
    STDMETHODIMP putref_Barcodes(_clsKELReaderBarcodes* value) override;
    STDMETHODIMP get_Windows(_clsKELReaderWindows** value) override;
    STDMETHODIMP putref_Windows(_clsKELReaderWindows* value) override;
    STDMETHODIMP get_Profiles(_clsKELReaderProfiles** value) override;
    STDMETHODIMP putref_Profiles(_clsKELReaderProfiles* value) override;
    STDMETHODIMP get_Printer(_clsKELReaderPrinter** value) override;
    STDMETHODIMP putref_Printer(_clsKELReaderPrinter* value) override;
    STDMETHODIMP get_fComm(IDispatch** value) override;
    STDMETHODIMP putref_fComm(IDispatch* value) override;
    STDMETHODIMP get_AnswerKey(IDispatch** value) override;
    STDMETHODIMP putref_AnswerKey(IDispatch* value) override;
    STDMETHODIMP get_HelpID(::kelReaderHelpID eHelpIDType, LONG* value) override;
    STDMETHODIMP put_HelpID(::kelReaderHelpID eHelpIDType, LONG value) override;
    KEL_COM_PROPERTY(std::string, HelpFile)

    KEL_COM_PROPERTY(Boolean, ReaderGrade)
    KEL_COM_PROPERTY(kelReaderBaudRate, BaudRate)
    KEL_COM_PROPERTY(Int32, SleepTime)
    KEL_COM_PROPERTY(kelReaderDataBits, DataBits)
    KEL_COM_PROPERTY(Boolean, Duplex)
    KEL_COM_PROPERTY(Boolean, DuplexForm)
    KEL_COM_PROPERTY(Boolean, Barcode)
    KEL_COM_PROPERTY(Boolean, Feeder)
    KEL_COM_PROPERTY(kelReaderFlowControl, FlowControl)
    KEL_COM_PROPERTY(Int16, MarkCutOff)
    KEL_COM_PROPERTY(Int16, MarkDiscrimination)
    KEL_COM_GET(std::string, ReaderName)

    KEL_COM_GET(Int16, Side1TimingMarks)
    KEL_COM_GET(Int16, Side2TimingMarks)
    STDMETHODIMP get_Side1Array(SAFEARRAY** value) override;
    STDMETHODIMP get_Side2Array(SAFEARRAY** value) override;
    STDMETHODIMP get_Side1Rows(SAFEARRAY** value) override;
    STDMETHODIMP put_Side1Rows(SAFEARRAY** value) override;
    STDMETHODIMP get_Side1Cols(SAFEARRAY** value) override;
    STDMETHODIMP put_Side1Cols(SAFEARRAY** value) override;
    STDMETHODIMP get_Side2Rows(SAFEARRAY** value) override;
    STDMETHODIMP put_Side2Rows(SAFEARRAY** value) override;
    STDMETHODIMP get_Side2Cols(SAFEARRAY** value) override;
    STDMETHODIMP put_Side2Cols(SAFEARRAY** value) override;

    KEL_COM_PROPERTY(std::string, Parity)
    KEL_COM_PROPERTY(Int16, Port)
    KEL_COM_PROPERTY(Boolean, CancelScan)
    KEL_COM_PROPERTY(kelReaderType, ReaderType)
    KEL_COM_PROPERTY(Int16, RecognitionThreshold)
    KEL_COM_PROPERTY(Boolean, Rejecter)
    KEL_COM_PROPERTY(float, StopBits)
    KEL_COM_PROPERTY(Int32, Timeout)

    STDMETHODIMP StartReader(VARIANT_BOOL* result) override;
    STDMETHODIMP ReadPage(VARIANT_BOOL InitializePrinter, VARIANT_BOOL* result) override;
    STDMETHODIMP ReadBatch(VARIANT_BOOL InitializePrinter, LONG lMaxSheets, LONG* lSheetCount,
                           VARIANT_BOOL* result) override;
    STDMETHODIMP EndReader(VARIANT_BOOL* result) override;
    STDMETHODIMP RejectPage() override;
    STDMETHODIMP EjectPage() override;

    KEL_COM_PROPERTY(Boolean, Windowing)
    KEL_COM_PROPERTY(kelRecognitionType, RecognitionMode)

    STDMETHODIMP LoadDefaults(::kelReaderType eReaderType, VARIANT_BOOL* result) override;
    STDMETHODIMP LoadSettings(::kelReaderRegistryKey lRegistryKey, BSTR sRegistrySubKey, VARIANT_BOOL* result) override;
    STDMETHODIMP SaveSettings(::kelReaderRegistryKey lRegistryKey, BSTR sRegistrySubKey, VARIANT_BOOL* result) override;
    STDMETHODIMP SetError(IDispatch** oErr, VARIANT_BOOL* result) override;
    STDMETHODIMP ShowOptions(VARIANT fParent, VARIANT_BOOL* result) override;
    STDMETHODIMP Locate(short iStartPort, VARIANT_BOOL* result) override;
    STDMETHODIMP Firmware(BSTR* sReturn, VARIANT_BOOL* result) override;

protected:
    [[nodiscard]] void* ownInterface(REFIID asked) override;
    [[nodiscard]] const GUID& events() const override { return DIID___clsKELReader; }

private:
    template <class Run>
    [[nodiscard]] HRESULT answer(VARIANT_BOOL* result, Run&& run) noexcept;
    [[nodiscard]] HRESULT putPages(SAFEARRAY** value, const char* source,
                                   void (clsKELReader::*set)(const PageArray&)) noexcept;

    EventSinks sinks_;
    std::shared_ptr<SinkEvents> events_;
    std::uint32_t cookie_;
};

} // namespace kel::com
