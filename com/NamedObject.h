// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "com/CountedObject.h"
#include "com/OleVariant.h"

#include <oaidl.h>

#include <span>

namespace kel::com {

/// An object for hosts that is no public class: its members are properties, reached by name alone.
class NamedObject : public IDispatch, public CountedObject {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return acquire(); }
    STDMETHODIMP_(ULONG) Release() override { return release(); }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID lcid, ITypeInfo** information) override;
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID lcid, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* exception, UINT* argument) override;

protected:
    /// A property: its name, and how it is read and set; one that cannot be read or set has no such function.
    struct Property {
        const wchar_t* name;
        OleVariant (*get)(NamedObject& object);
        void (*put)(NamedObject& object, const OleVariant& value);
    };

    NamedObject(const void* native, const std::type_info& kind, std::span<const Property> properties)
        : CountedObject(native, kind), properties_(properties)
    {
    }

    /// Another interface that the object has.
    [[nodiscard]] virtual void* ownInterface(REFIID) { return nullptr; }

private:
    std::span<const Property> properties_; // the member number counts from 1
};

} // namespace kel::com
