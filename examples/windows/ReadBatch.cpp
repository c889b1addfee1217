// SPDX-License-Identifier: MIT
// Reads a batch of sheets through the COM server and prints the marks of each.
// Usage: ReadBatch MODEL-NUMBER PORT SHEETS [ROWS COLUMNS [SECONDS]]
// SECONDS is how long the reader may take for a reply.
//
// KELReader81U.dll is registered (regsvr32 KELReader81U.dll), or the program's manifest names it. KELReader81U.h is
// made from KELReader81U.idl; initguid.h before it defines the identifiers.

#include <windows.h>

#include <ocidl.h>
#include <oleauto.h>

#include <initguid.h>

#include "KELReader81U.h"

#include <cstdio>
#include <cstdlib>

namespace {

/// A short array of one number a page; element 1 is page 1.
HRESULT setFirstPage(_clsKELReader* reader, HRESULT (STDMETHODCALLTYPE _clsKELReader::*put)(SAFEARRAY**), short value)
{
    SAFEARRAY* pages = SafeArrayCreateVector(VT_I2, 1, 1);
    LONG page = 1;
    SafeArrayPutElement(pages, &page, &value);
    const HRESULT result = (reader->*put)(&pages);
    SafeArrayDestroy(pages);
    return result;
}

/// Receives the events of a reader. It lives where it is declared, so that its references need no count.
class Sheets final : public IDispatch {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool known =
            IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, DIID___clsKELReader);
        *object = known ? static_cast<IDispatch*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

    STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*, UINT*) override
    {
        // ReadSheet(iSide1Array, iSide2Array, sBarcodeArray, bReject), all by reference, the last one first.
        if (event == 2 && arguments->cArgs == 4)
            printSheet(*arguments->rgvarg[3].pparray, *arguments->rgvarg[1].pparray);
        return S_OK;
    }

private:
    void printSheet(SAFEARRAY* side1, SAFEARRAY* barcodes)
    {
        std::printf("Sheet %d", ++sheets_);
        LONG first = 0;
        LONG last = -1;
        SafeArrayGetLBound(barcodes, 1, &first);
        SafeArrayGetUBound(barcodes, 1, &last);
        for (LONG index = first; index <= last; ++index) {
            BSTR barcode = nullptr;
            SafeArrayGetElement(barcodes, &index, &barcode);
            std::printf(" %ls", barcode);
            SysFreeString(barcode);
        }
        std::printf("\n");

        LONG rows = 0;
        LONG columns = 0;
        SafeArrayGetUBound(side1, 1, &rows);
        SafeArrayGetUBound(side1, 2, &columns);
        for (LONG row = 1; row <= rows; ++row) {
            for (LONG column = 1; column <= columns; ++column) {
                LONG cell[] = {row, column};
                short mark = 0;
                SafeArrayGetElement(side1, cell, &mark);
                if (mark != 0)
                    std::printf("  row %ld, column %ld: %d\n", row, column, mark);
            }
        }
    }

    int sheets_ = 0;
};

bool readBatch(_clsKELReader* reader, int argc, char** argv)
{
    VARIANT_BOOL done = VARIANT_FALSE;
    reader->LoadDefaults(static_cast<kelReaderType>(std::atoi(argv[1])), &done);
    reader->put_RecognitionMode(kelRecognitionTypePage);
    reader->put_Port(static_cast<short>(std::atoi(argv[2])));
    if (argc > 5) {
        setFirstPage(reader, &_clsKELReader::put_Side1Rows, static_cast<short>(std::atoi(argv[4])));
        setFirstPage(reader, &_clsKELReader::put_Side1Cols, static_cast<short>(std::atoi(argv[5])));
    }
    if (argc > 6)
        reader->put_Timeout(std::atoi(argv[6]));

    IConnectionPointContainer* container = nullptr;
    IConnectionPoint* events = nullptr;
    DWORD connection = 0;
    Sheets sheets;
    reader->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container));
    container->FindConnectionPoint(DIID___clsKELReader, &events);
    events->Advise(&sheets, &connection);

    LONG count = 0;
    reader->ReadBatch(VARIANT_FALSE, std::atoi(argv[3]), &count, &done);

    events->Unadvise(connection);
    events->Release();
    container->Release();
    return done != VARIANT_FALSE;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::fprintf(stderr, "Usage: ReadBatch MODEL-NUMBER PORT SHEETS [ROWS COLUMNS [SECONDS]]\n");
        return 2;
    }
    CoInitialize(nullptr);
    _clsKELReader* reader = nullptr;
    HRESULT created = CoCreateInstance(CLSID_clsKELReader, nullptr, CLSCTX_INPROC_SERVER, IID__clsKELReader,
                                       reinterpret_cast<void**>(&reader));
    bool ran = false;
    if (SUCCEEDED(created)) {
        ran = readBatch(reader, argc, argv);
        reader->Release();
    } else {
        std::fprintf(stderr, "The reader cannot be created: 0x%08lX\n", static_cast<unsigned long>(created));
    }
    CoUninitialize();
    return ran ? EXIT_SUCCESS : EXIT_FAILURE;
}
