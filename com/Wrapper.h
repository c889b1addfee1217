// SPDX-License-Identifier: MIT
#pragma once

#include "com/Automation.h"
#include "com/Boundary.h"
#include "com/CountedObject.h"
#include "com/Dispatch.h"
#include "com/OwnObject.h"
#include "types/Reference.h"

#include <ocidl.h>

#include <memory>
#include <utility>

namespace kel::com {

/// What every public class of the server has in common: an object that stands for a native one, with its dual
/// interface. `Interface` is the one of the type library, `Native` the class of this component that it wraps.
template <class Interface, class Native>
class Wrapper : public Interface,
                public ISupportErrorInfo,
                public IProvideClassInfo2,
                public IOwnObject,
                public CountedObject {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = interfaceOf(iid);
        if (!*object)
            return E_NOINTERFACE;
        acquire();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return acquire(); }
    STDMETHODIMP_(ULONG) Release() override { return release(); }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        if (!count)
            return E_POINTER;
        *count = 1;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** information) override
    {
        if (!information)
            return E_POINTER;
        *information = nullptr;
        if (index != 0)
            return DISP_E_BADINDEX;
        return atBoundary(iid(), [&] { *information = ComPtr<ITypeInfo>(&type().information()).detach(); });
    }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        return idsOfNames(type(), names, count, ids);
    }
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* exception, UINT* argument) override
    {
        if (!IsEqualIID(reserved, IID_NULL))
            return DISP_E_UNKNOWNINTERFACE;
        const ComPtr<IUnknown> keep(unknown()); // the call may let go of the host's last reference
        return invoke(type(), static_cast<Interface*>(this), id, flags, parameters, result, exception, argument);
    }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID asked) override
    {
        return IsEqualIID(asked, iid()) || IsEqualIID(asked, IID_IDispatch) ? S_OK : S_FALSE;
    }

    STDMETHODIMP GetClassInfo(ITypeInfo** information) override
    {
        if (!information)
            return E_POINTER;
        *information = nullptr;
        return atBoundary(
            iid(), [&] { *information = ComPtr<ITypeInfo>(&typeInformationOf(classID_).information()).detach(); });
    }
    STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override
    {
        if (!guid)
            return E_POINTER;
        *guid = events();
        if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID)
            return E_INVALIDARG;
        return IsEqualGUID(*guid, GUID_NULL) ? E_FAIL : S_OK;
    }

    [[nodiscard]] std::shared_ptr<void> native(const std::type_info& kind) const override
    {
        return kind == typeid(Native) ? std::shared_ptr<void>(native_) : nullptr;
    }

protected:
    Wrapper(std::shared_ptr<Native> native, REFCLSID classID)
        : CountedObject(native.get(), typeid(Native)), native_(std::move(native)), classID_(classID),
          type_(typeInformationOf(iid()))
    {
    }

    /// An interface that only this class has.
    [[nodiscard]] virtual void* ownInterface(REFIID) { return nullptr; }
    /// The interface of its events.
    [[nodiscard]] virtual const GUID& events() const { return GUID_NULL; }

    [[nodiscard]] Native& native() const noexcept { return *native_; }
    [[nodiscard]] IUnknown* unknown() noexcept { return static_cast<Interface*>(this); }
    [[nodiscard]] static REFIID iid() noexcept { return __uuidof(Interface); }

    /// Runs a call that may run the host's code, which may let go of its last reference.
    template <class Body>
    [[nodiscard]] HRESULT session(Body&& body) noexcept
    {
        const ComPtr<IUnknown> keep(unknown());
        return atBoundary(iid(), std::forward<Body>(body));
    }

    /// Gives a host a value.
    template <class T, class Read>
    [[nodiscard]] static HRESULT give(typename Automation<T>::type* place, Read&& read) noexcept
    {
        if (!place)
            return E_POINTER;
        return atBoundary(iid(), [&] { *place = Automation<T>::give(read()); });
    }

private:
    [[nodiscard]] const TypeInformation& type() const noexcept { return type_; }

    [[nodiscard]] void* interfaceOf(REFIID asked)
    {
        if (IsEqualIID(asked, IID_IUnknown) || IsEqualIID(asked, IID_IDispatch) || IsEqualIID(asked, iid()))
            return static_cast<Interface*>(this);
        if (IsEqualIID(asked, IID_ISupportErrorInfo))
            return static_cast<ISupportErrorInfo*>(this);
        if (IsEqualIID(asked, IID_IProvideClassInfo) || IsEqualIID(asked, IID_IProvideClassInfo2))
            return static_cast<IProvideClassInfo2*>(this);
        if (IsEqualIID(asked, IID_IOwnObject))
            return static_cast<IOwnObject*>(this);
        return ownInterface(asked);
    }

    std::shared_ptr<Native> native_;
    const CLSID& classID_;
    const TypeInformation& type_;
};

/// The object that stands for a native one, the living one if there is one, with a reference for the caller; nothing
/// for nothing.
template <class Object, class Native>
[[nodiscard]] Object* objectOf(const Reference<Native>& native)
{
    if (native.isNothing())
        return nullptr;
    if (CountedObject* const living = CountedObject::find(native.shared().get(), typeid(Native)))
        return static_cast<Object*>(living);
    return new Object(native.shared());
}

} // namespace kel::com

// clang-format off
/// A property of a wrapper that the native object has under the same name.
#define KEL_COM_GET(Type, Name)                                                                                        \
    STDMETHODIMP get_##Name(typename Automation<Type>::type* value) override                                           \
    {                                                                                                                  \
        return this->template give<Type>(value, [this] { return this->native().Name(); });                             \
    }
#define KEL_COM_PUT(Type, Name)                                                                                        \
    STDMETHODIMP put_##Name(typename Automation<Type>::type value) override                                            \
    {                                                                                                                  \
        return atBoundary(this->iid(), [&] { this->native().Name(Automation<Type>::take(value)); });                   \
    }
#define KEL_COM_PROPERTY(Type, Name) KEL_COM_GET(Type, Name) KEL_COM_PUT(Type, Name)
// clang-format on
