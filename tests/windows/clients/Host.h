// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>

// The identifiers of what follows are defined here, not only declared.
#include <initguid.h>

#include "KELReader81U.h"

#include <array>
#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

// What a host in C++ has: the component's DLL beside the program, objects of its own, and calls by name.

/// The DLL beside the program, without registration.
inline HMODULE server()
{
    static const HMODULE loaded = LoadLibraryW(L"KELReader81U.dll");
    return loaded;
}

template <class Function>
Function serverExport(const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(server(), name)));
}

/// A counted pointer.
template <class T>
class Ptr {
public:
    Ptr() = default;
    Ptr(const Ptr& other) : at_(other.at_)
    {
        if (at_)
            at_->AddRef();
    }
    Ptr& operator=(Ptr other)
    {
        std::swap(at_, other.at_);
        return *this;
    }
    ~Ptr()
    {
        if (at_)
            at_->Release();
    }
    T* get() const { return at_; }
    T* operator->() const { return at_; }
    T** out()
    {
        *this = Ptr();
        return &at_;
    }
    void** outVoid() { return reinterpret_cast<void**>(out()); }
    explicit operator bool() const { return at_ != nullptr; }

private:
    T* at_ = nullptr;
};

/// A new object of one of the component's classes.
template <class Interface>
Ptr<Interface> create(REFCLSID classID)
{
    using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    Ptr<IClassFactory> factory;
    Ptr<Interface> object;
    if (SUCCEEDED(serverExport<GetClassObject>("DllGetClassObject")(classID, IID_IClassFactory, factory.outVoid())))
        factory->CreateInstance(nullptr, __uuidof(Interface), object.outVoid());
    return object;
}

inline Ptr<_clsKELReader> newReader()
{
    return create<_clsKELReader>(CLSID_clsKELReader);
}

/// A variant of the host's.
class Value {
public:
    Value() { VariantInit(&value_); }
    Value(const Value& other) : Value() { VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)); }
    Value& operator=(const Value& other)
    {
        VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
        return *this;
    }
    ~Value() { VariantClear(&value_); }

    Value(int number) : Value()
    {
        value_.vt = VT_I4;
        value_.lVal = number;
    }
    Value(short number) : Value()
    {
        value_.vt = VT_I2;
        value_.iVal = number;
    }
    Value(double number) : Value()
    {
        value_.vt = VT_R8;
        value_.dblVal = number;
    }
    Value(bool value) : Value()
    {
        value_.vt = VT_BOOL;
        value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    }
    Value(const wchar_t* text) : Value()
    {
        value_.vt = VT_BSTR;
        value_.bstrVal = SysAllocString(text);
    }
    Value(IDispatch* object) : Value()
    {
        value_.vt = VT_DISPATCH;
        value_.pdispVal = object;
        if (object)
            object->AddRef();
    }

    VARIANT& get() { return value_; }
    const VARIANT& get() const { return value_; }
    VARIANT* out()
    {
        VariantClear(&value_);
        return &value_;
    }
    VARTYPE type() const { return value_.vt; }

    int number() const { return as(VT_I4).value_.lVal; }
    bool truth() const { return as(VT_BOOL).value_.boolVal != VARIANT_FALSE; }
    std::wstring text() const
    {
        const Value converted = as(VT_BSTR);
        return converted.value_.bstrVal ? std::wstring(converted.value_.bstrVal, SysStringLen(converted.value_.bstrVal))
                                        : std::wstring();
    }
    IDispatch* object() const { return value_.vt == VT_DISPATCH ? value_.pdispVal : nullptr; }

private:
    Value as(VARTYPE type) const
    {
        Value result;
        EXPECT_EQ(VariantChangeType(&result.value_, const_cast<VARIANT*>(&value_), 0, type), S_OK);
        return result;
    }

    VARIANT value_;
};

/// What a call by name gave: its result, or how it failed.
struct Outcome {
    HRESULT code = S_OK;
    Value result;
    HRESULT failure = S_OK; // what the object told
    std::wstring description;
};

/// Calls a member by its name, as a late-bound host does.
inline Outcome call(IDispatch* object, const wchar_t* name, WORD flags, const std::vector<Value>& arguments = {})
{
    Outcome outcome;
    DISPID id = 0;
    auto* member = const_cast<LPOLESTR>(name);
    outcome.code = object->GetIDsOfNames(IID_NULL, &member, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(outcome.code))
        return outcome;
    std::vector<VARIANT> reversed;
    for (auto at = arguments.rbegin(); at != arguments.rend(); ++at)
        reversed.push_back(at->get());
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters{reversed.data(), puts ? &put : nullptr, static_cast<UINT>(reversed.size()), puts ? 1U : 0U};
    EXCEPINFO exception{};
    UINT wrong = 0;
    outcome.code = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                  puts ? nullptr : outcome.result.out(), &exception, &wrong);
    outcome.failure = exception.scode;
    if (exception.bstrDescription)
        outcome.description = exception.bstrDescription;
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
    return outcome;
}

inline Value get(IDispatch* object, const wchar_t* name, const std::vector<Value>& arguments = {})
{
    const Outcome outcome = call(object, name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, arguments);
    EXPECT_EQ(outcome.code, S_OK) << name;
    return outcome.result;
}

inline void put(IDispatch* object, const wchar_t* name, const Value& value)
{
    const WORD flags = value.type() == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
    EXPECT_EQ(call(object, name, flags, {value}).code, S_OK) << name;
}

/// A new array of 16-bit numbers with the lower bound 1.
inline SAFEARRAY* numbers(const std::vector<short>& values)
{
    SAFEARRAY* const array = SafeArrayCreateVector(VT_I2, 1, static_cast<ULONG>(values.size()));
    for (LONG index = 1; index <= static_cast<LONG>(values.size()); ++index)
        SafeArrayPutElement(array, &index, const_cast<short*>(&values[static_cast<std::size_t>(index) - 1]));
    return array;
}

/// A call that has reached an object of the host's.
struct Call {
    WORD flags = 0;
    DISPPARAMS* parameters = nullptr;
    VARIANT* result = nullptr;
    EXCEPINFO* exception = nullptr;

    bool puts() const { return (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0; }
    UINT count() const { return parameters->cArgs; }
    /// An argument by its place, the first is 0.
    VARIANT& argument(UINT place) const { return parameters->rgvarg[parameters->cArgs - 1 - place]; }
    void give(const Value& value) const
    {
        if (result)
            VariantCopy(result, const_cast<VARIANT*>(&value.get()));
    }
    HRESULT fail(HRESULT code, const wchar_t* description) const
    {
        if (exception) {
            *exception = {};
            exception->scode = code;
            exception->bstrDescription = SysAllocString(description);
        }
        return DISP_E_EXCEPTION;
    }
};

/// An object of the host's, or a sink for events. It lives where it is declared.
class HostObject : public IDispatch {
public:
    using Member = std::function<HRESULT(const Call&)>;

    HostObject() = default;
    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;
    virtual ~HostObject() { EXPECT_EQ(references, 1) << "references to an object of the host's stay behind"; }

    /// A member under a name, or an event under its number.
    HostObject& member(const wchar_t* name, Member code)
    {
        const DISPID id = 1000 + static_cast<DISPID>(ids_.size());
        ids_[name] = id;
        members_[id] = std::move(code);
        return *this;
    }
    HostObject& event(DISPID number, Member code)
    {
        members_[number] = std::move(code);
        return *this;
    }
    /// A property that holds a value.
    HostObject& property(const wchar_t* name, Value& value)
    {
        return member(name, [&value](const Call& c) {
            if (c.puts())
                VariantCopy(value.out(), &c.argument(0));
            else
                c.give(value);
            return S_OK;
        });
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        *object =
            IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, DIID___clsKELReader)
                ? this
                : nullptr;
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
    STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override
    {
        const auto found = ids_.find(names[0]);
        ids[0] = found == ids_.end() ? DISPID_UNKNOWN : found->second;
        return found == ids_.end() ? DISP_E_UNKNOWNNAME : S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* exception, UINT*) override
    {
        const auto found = members_.find(id);
        if (found == members_.end())
            return DISP_E_MEMBERNOTFOUND;
        return found->second(Call{flags, parameters, result, exception});
    }

    int references = 1;

private:
    std::map<std::wstring, DISPID> ids_;
    std::map<DISPID, Member> members_;
};

/// The connection of a sink to a reader's events.
class Connection {
public:
    Connection(_clsKELReader* reader, IUnknown* sink)
    {
        Ptr<IConnectionPointContainer> container;
        reader->QueryInterface(IID_IConnectionPointContainer, container.outVoid());
        EXPECT_EQ(container->FindConnectionPoint(DIID___clsKELReader, point_.out()), S_OK);
        EXPECT_EQ(point_->Advise(sink, &cookie_), S_OK);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { end(); }
    void end()
    {
        if (cookie_ != 0)
            EXPECT_EQ(point_->Unadvise(std::exchange(cookie_, 0)), S_OK);
    }

private:
    Ptr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

/// Answers the message boxes of this thread while it lives, and keeps what they say.
class BoxReader {
public:
    BoxReader() : watching_([this, thread = GetCurrentThreadId()] { watch(thread); }) {}
    BoxReader(const BoxReader&) = delete;
    BoxReader& operator=(const BoxReader&) = delete;
    ~BoxReader() { end(); }

    /// The texts of the boxes, a line between them.
    std::wstring texts()
    {
        end();
        return texts_;
    }

private:
    void end()
    {
        ends_ = true;
        if (watching_.joinable())
            watching_.join();
    }
    void watch(DWORD thread)
    {
        while (!ends_) {
            EnumThreadWindows(thread, &answer, reinterpret_cast<LPARAM>(this));
            Sleep(5);
        }
    }
    static BOOL CALLBACK read(HWND child, LPARAM self)
    {
        std::array<wchar_t, 4096> content{};
        GetClassNameW(child, content.data(), static_cast<int>(content.size()));
        if (std::wstring_view(content.data()) != L"Static")
            return TRUE;
        GetWindowTextW(child, content.data(), static_cast<int>(content.size()));
        reinterpret_cast<BoxReader*>(self)->texts_ += content.data();
        return TRUE;
    }
    static BOOL CALLBACK answer(HWND window, LPARAM self)
    {
        std::array<wchar_t, 4096> text{};
        GetClassNameW(window, text.data(), static_cast<int>(text.size()));
        if (std::wstring_view(text.data()) != L"#32770" || !IsWindowVisible(window))
            return TRUE;
        auto& reader = *reinterpret_cast<BoxReader*>(self);
        EnumChildWindows(window, &read, self);
        reader.texts_ += L'\n';
        SendMessageW(window, WM_COMMAND, IDOK, 0);
        return TRUE;
    }

    std::wstring texts_;
    std::atomic<bool> ends_{false};
    std::thread watching_;
};

/// Every test runs in an apartment of its own.
class HostTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(CoInitialize(nullptr), S_OK); }
    void TearDown() override { CoUninitialize(); }
};
