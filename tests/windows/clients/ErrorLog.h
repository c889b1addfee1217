// SPDX-License-Identifier: MIT
#pragma once

#include "tests/windows/clients/Host.h"

/// An error object that writes down what it is told.
class ErrorLog {
public:
    ErrorLog()
    {
        object.property(L"Silent", silent);
        object.member(L"RaiseError", [this](const Call& c) {
            EXPECT_EQ(c.count(), 13U);
            Value description;
            VariantCopy(description.out(), &c.argument(2));
            Value source;
            VariantCopy(source.out(), &c.argument(3));
            reports += std::to_wstring(c.argument(0).lVal) + L"/" + std::to_wstring(c.argument(1).lVal) + L" " +
                       source.text() + L"\n";
            EXPECT_FALSE(description.text().empty());
            texts += description.text() + L"\n";
            Value title;
            VariantCopy(title.out(), &c.argument(4));
            titles += title.text() + L"\n";
            EXPECT_EQ(c.argument(12).vt, VT_BOOL);
            if (fails)
                return c.fail(static_cast<HRESULT>(0x800A03E9), L"no paper");
            c.give(Value(short{2}));
            return S_OK;
        });
    }
    Value silent{false};
    std::wstring reports;
    std::wstring texts;
    std::wstring titles;
    bool fails = false;
    HostObject object;
};

/// Registers an error object while it lives.
class Registered {
public:
    Registered(_clsKELReader* reader, IDispatch* object) : reader_(reader)
    {
        EXPECT_TRUE(get(reader_, L"SetError", {Value(object)}).truth());
    }
    ~Registered() { get(reader_, L"SetError", {Value(static_cast<IDispatch*>(nullptr))}); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    _clsKELReader* reader_;
};
