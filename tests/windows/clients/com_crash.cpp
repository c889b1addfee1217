// SPDX-License-Identifier: MIT
// The error library of a host's maker: a registered class, of which each failure that nobody has dealt with makes an
// object.

#include "tests/windows/clients/Host.h"

#include <algorithm>

namespace {

constexpr CLSID kLibraryClass = {0x9d1c8f5a, 0x4b0e, 0x4c1d, {0x8e, 0x27, 0x5a, 0x61, 0x0f, 0x3b, 0x72, 0xc4}};
const wchar_t* const kLibraryKey = L"KELError10.Error";

/// Gives one and the same object.
class Factory final : public IClassFactory {
public:
    explicit Factory(IDispatch& object) : object_(object) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        *object = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override
    {
        ++created;
        return object_.QueryInterface(iid, object);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

    int created = 0;

private:
    IDispatch& object_;
};

/// The class by its name, as long as this lives: its objects are this process's. Wine finds the names of the machine
/// only, not those of the user.
class RegisteredLibrary {
public:
    explicit RegisteredLibrary(Factory& factory)
    {
        std::array<wchar_t, 40> text{};
        StringFromGUID2(kLibraryClass, text.data(), static_cast<int>(text.size()));
        const std::wstring key = std::wstring(kLibraryKey) + L"\\CLSID";
        EXPECT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, text.data(),
                                  static_cast<DWORD>((std::wstring_view(text.data()).size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
        EXPECT_EQ(CoRegisterClassObject(kLibraryClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_),
                  S_OK);
    }
    RegisteredLibrary(const RegisteredLibrary&) = delete;
    RegisteredLibrary& operator=(const RegisteredLibrary&) = delete;
    ~RegisteredLibrary()
    {
        CoRevokeClassObject(cookie_);
        RegDeleteTreeW(HKEY_CLASSES_ROOT, kLibraryKey);
    }

private:
    DWORD cookie_ = 0;
};

class Crash : public HostTest {
protected:
    /// A failure of an accessor, which goes on to the host.
    static void fail()
    {
        LONG value = 0;
        EXPECT_EQ(newReader()->get_HelpID(static_cast<kelReaderHelpID>(7), &value), static_cast<HRESULT>(0x800A0009));
    }
};

TEST_F(Crash, IsToldToTheErrorLibraryByName)
{
    std::vector<VARTYPE> types;
    std::vector<std::wstring> texts;
    int actions = 0;
    HostObject library;
    library.member(L"ErrorHandler", [&](const Call& c) {
        EXPECT_EQ(c.flags, DISPATCH_METHOD);
        for (UINT place = 0; place < c.count(); ++place) {
            Value argument;
            VariantCopy(argument.out(), &c.argument(place));
            types.push_back(argument.type());
            texts.push_back(argument.text());
        }
        return S_OK;
    });
    library.member(L"Action", [&](const Call& c) {
        EXPECT_FALSE(c.puts());
        EXPECT_EQ(c.count(), 0U);
        ++actions;
        c.give(Value(L"carry on"));
        return S_OK;
    });
    Factory factory(library);
    BoxReader boxes;
    {
        const RegisteredLibrary registered(factory);
        fail();
    }
    EXPECT_EQ(boxes.texts(), L"");
    EXPECT_EQ(factory.created, 1);
    EXPECT_EQ(actions, 1);
    ASSERT_EQ(texts.size(), 8U);
    EXPECT_EQ(types, (std::vector<VARTYPE>{VT_I4, VT_BSTR, VT_BSTR, VT_BSTR, VT_BSTR, VT_I4, VT_BSTR, VT_BSTR}));
    EXPECT_EQ(texts[0], L"9");
    EXPECT_EQ(texts[1], L"KELReader81U");
    EXPECT_EQ(texts[2], L"clsKELReader");
    EXPECT_EQ(texts[3], L"HelpID");
    EXPECT_EQ(texts[4], L"Subscript out of range");
    EXPECT_GT(std::stoi(texts[5]), 0);
    EXPECT_TRUE(texts[6].starts_with(L"<Variables>\r\n<LocalVariables>\r\n")) << texts[6].size();
    EXPECT_NE(texts[6].find(L"<fComm>{frmComm}</fComm>"), std::wstring::npos);
    EXPECT_NE(texts[6].find(L"<oError>{Nothing}</oError>"), std::wstring::npos);
    EXPECT_TRUE(texts[6].ends_with(L"</eHelpIDType>\r\n</Parameters>"));
    EXPECT_EQ(std::count(texts[7].begin(), texts[7].end(), L'.'), 2);
}

TEST_F(Crash, OfALibraryThatFailsIsNobodysConcern)
{
    HostObject library;
    library.member(L"ErrorHandler", [](const Call& c) { return c.fail(E_FAIL, L"no"); });
    Factory factory(library);
    BoxReader boxes;
    {
        const RegisteredLibrary registered(factory);
        fail();
    }
    EXPECT_EQ(boxes.texts(), L"");
    EXPECT_EQ(factory.created, 1);
}

TEST_F(Crash, WithoutALibraryIsShownInABox)
{
    BoxReader boxes;
    fail();
    EXPECT_NE(boxes.texts().find(L"Module: clsKELReader\r\nProcedure: HelpID\r\n"), std::wstring::npos);
}

} // namespace
