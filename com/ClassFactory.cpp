// SPDX-License-Identifier: MIT
#include "com/ClassFactory.h"

#include "com/FormObjects.h"
#include "com/PrinterObject.h"
#include "com/ProfileObjects.h"
#include "com/ReaderObject.h"

#include <algorithm>
#include <array>

namespace kel::com {

namespace {

/// A new object of a class with a native one of its own, with a reference for the caller.
template <class Object, class Native>
IUnknown* create()
{
    return static_cast<IDispatch*>(new Object(std::make_shared<Native>()));
}

struct PublicClass {
    const CLSID* classID;
    IUnknown* (*create)();
};

const std::array kPublicClasses{
    PublicClass{&CLSID_clsKELReader, create<ReaderObject, clsKELReader>},
    PublicClass{&CLSID_clsKELReaderBarcode, create<BarcodeObject, clsKELReaderBarcode>},
    PublicClass{&CLSID_clsKELReaderBarcodes, create<BarcodesObject, clsKELReaderBarcodes>},
    PublicClass{&CLSID_clsKELReaderWindow, create<WindowObject, clsKELReaderWindow>},
    PublicClass{&CLSID_clsKELReaderWindows, create<WindowsObject, clsKELReaderWindows>},
    PublicClass{&CLSID_clsKELReaderPrinter, create<PrinterObject, clsKELReaderPrinter>},
    PublicClass{&CLSID_clsKELReaderProfile, create<ProfileObject, clsKELReaderProfile>},
    PublicClass{&CLSID_clsKELReaderProfiles, create<ProfilesObject, clsKELReaderProfiles>},
};

/// A factory holds nothing but its class.
class ClassFactory final : public IClassFactory, public CountedObject {
public:
    explicit ClassFactory(const PublicClass& made) : made_(made) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        if (!known)
            return E_NOINTERFACE;
        acquire();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return acquire(); }
    STDMETHODIMP_(ULONG) Release() override { return release(); }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        if (outer)
            return CLASS_E_NOAGGREGATION;
        return atBoundary(iid, [&] {
            const auto created = ComPtr<IUnknown>::owning(made_.create());
            demand(created->QueryInterface(iid, object));
        });
    }

    STDMETHODIMP LockServer(BOOL lock) override
    {
        lockServer(lock != FALSE);
        return S_OK;
    }

private:
    const PublicClass& made_;
};

} // namespace

HRESULT classFactoryOf(REFCLSID classID, REFIID iid, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    const auto* const found = std::find_if(kPublicClasses.begin(), kPublicClasses.end(),
                                           [&](const PublicClass& one) { return IsEqualCLSID(*one.classID, classID); });
    if (found == kPublicClasses.end())
        return CLASS_E_CLASSNOTAVAILABLE;
    return atBoundary(iid, [&] {
        // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): the boundary handles it
        const auto factory = ComPtr<IClassFactory>::owning(new ClassFactory(*found));
        demand(factory->QueryInterface(iid, object));
    });
}

} // namespace kel::com
