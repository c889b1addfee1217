// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <oleacc.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

/// The system's annotation service for as long as this lives, for the dialogs of this thread: Wine has one that takes
/// nothing. It keeps what is said of a window, and refuses what is said of none.
class AnnotationService final : public IClassFactory, public IAccPropServices {
public:
    AnnotationService()
    {
        ::CoInitialize(nullptr);
        ::CoRegisterClassObject(CLSID_AccPropServices, static_cast<IClassFactory*>(this), CLSCTX_INPROC_SERVER,
                                REGCLS_MULTIPLEUSE, &number_);
    }
    ~AnnotationService()
    {
        ::CoRevokeClassObject(number_);
        ::CoUninitialize();
    }
    AnnotationService(const AnnotationService&) = delete;
    AnnotationService& operator=(const AnnotationService&) = delete;

    /// What is said of a window; false if nothing is.
    [[nodiscard]] bool find(HWND window, const MSAAPROPID& what, std::wstring& text) const
    {
        const std::lock_guard lock(mutex_);
        const auto found = said_.find({window, what.Data1});
        if (found != said_.end())
            text = found->second;
        return found != said_.end();
    }

    /// How much was said and never taken back.
    [[nodiscard]] std::size_t left() const
    {
        const std::lock_guard lock(mutex_);
        return said_.size();
    }

    HRESULT WINAPI QueryInterface(REFIID wanted, void** object) override
    {
        *object = nullptr;
        if (wanted == IID_IAccPropServices)
            *object = static_cast<IAccPropServices*>(this);
        else if (wanted == IID_IUnknown || wanted == IID_IClassFactory)
            *object = static_cast<IClassFactory*>(this);
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG WINAPI AddRef() override { return 2; }
    ULONG WINAPI Release() override { return 1; }

    HRESULT WINAPI CreateInstance(IUnknown* outer, REFIID wanted, void** object) override
    {
        return outer ? CLASS_E_NOAGGREGATION : QueryInterface(wanted, object);
    }
    HRESULT WINAPI LockServer(BOOL) override { return S_OK; }

    HRESULT WINAPI SetHwndPropStr(HWND window, DWORD object, DWORD child, MSAAPROPID what, LPCWSTR text) override
    {
        if (!isClient(window, object, child) || !text)
            return E_INVALIDARG;
        const std::lock_guard lock(mutex_);
        said_[{window, what.Data1}] = text;
        return S_OK;
    }
    HRESULT WINAPI ClearHwndProps(HWND window, DWORD object, DWORD child, const MSAAPROPID* what, int count) override
    {
        if (!isClient(window, object, child))
            return E_INVALIDARG;
        const std::lock_guard lock(mutex_);
        for (int each = 0; each < count; ++each)
            said_.erase({window, what[each].Data1});
        return S_OK;
    }

    HRESULT WINAPI SetPropValue(const BYTE*, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetPropServer(const BYTE*, DWORD, const MSAAPROPID*, int, IAccPropServer*, AnnoScope) override
    {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ClearProps(const BYTE*, DWORD, const MSAAPROPID*, int) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHwndProp(HWND, DWORD, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHwndPropServer(HWND, DWORD, DWORD, const MSAAPROPID*, int, IAccPropServer*, AnnoScope) override
    {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ComposeHwndIdentityString(HWND, DWORD, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI DecomposeHwndIdentityString(const BYTE*, DWORD, HWND*, DWORD*, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuProp(HMENU, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuPropStr(HMENU, DWORD, MSAAPROPID, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuPropServer(HMENU, DWORD, const MSAAPROPID*, int, IAccPropServer*, AnnoScope) override
    {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ClearHmenuProps(HMENU, DWORD, const MSAAPROPID*, int) override { return E_NOTIMPL; }
    HRESULT WINAPI ComposeHmenuIdentityString(HMENU, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI DecomposeHmenuIdentityString(const BYTE*, DWORD, HMENU*, DWORD*) override { return E_NOTIMPL; }

private:
    /// Nothing can be said of a window that is gone.
    static bool isClient(HWND window, DWORD object, DWORD child)
    {
        return ::IsWindow(window) && object == static_cast<DWORD>(OBJID_CLIENT) && child == CHILDID_SELF;
    }

    mutable std::mutex mutex_;
    std::map<std::pair<HWND, unsigned long>, std::wstring> said_;
    DWORD number_ = 0;
};

/// What a screen reader hears of a window: from the annotation service or else from the system's accessible object.
///
/// Wine has objects for edit controls, whose name is the label before them and whose value is their text; of all
/// others it knows the text and the state. What Windows has of them is added here: a list has its name as an edit
/// control does, the chosen row is its value, the role comes from class and style, a box is ticked or not.
class ScreenReader {
public:
    explicit ScreenReader(const AnnotationService& service) : service_(service) { ::CoInitialize(nullptr); }
    ~ScreenReader() { ::CoUninitialize(); }
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    [[nodiscard]] std::wstring name(HWND window) const
    {
        std::wstring said;
        if (service_.find(window, PROPID_ACC_NAME, said))
            return said;
        if (kindOf(window) == L"combobox") {
            HWND label = ::GetWindow(window, GW_HWNDPREV);
            while (label && kindOf(label) != L"static")
                label = ::GetWindow(label, GW_HWNDPREV);
            return label ? name(label) : said;
        }
        return kindOf(window) == L"msctls_updown32" ? said : textOf(window, &IAccessible::get_accName);
    }

    [[nodiscard]] std::wstring value(HWND window) const
    {
        std::wstring said;
        if (service_.find(window, PROPID_ACC_VALUE, said))
            return said;
        // The name of any other window than an edit control is its text: here, the chosen row.
        return kindOf(window) == L"combobox" ? textOf(window, &IAccessible::get_accName)
                                             : textOf(window, &IAccessible::get_accValue);
    }

    [[nodiscard]] std::wstring description(HWND window) const
    {
        std::wstring said;
        return service_.find(window, PROPID_ACC_DESCRIPTION, said) ? said
                                                                   : textOf(window, &IAccessible::get_accDescription);
    }

    [[nodiscard]] long role(HWND window) const
    {
        const long known = numberOf(window, &IAccessible::get_accRole);
        if (known != ROLE_SYSTEM_CLIENT)
            return known;
        const std::wstring kind = kindOf(window);
        if (kind == L"static")
            return ROLE_SYSTEM_STATICTEXT;
        if (kind == L"combobox")
            return ROLE_SYSTEM_COMBOBOX;
        if (kind == L"msctls_updown32")
            return ROLE_SYSTEM_SPINBUTTON;
        if (kind != L"button")
            return known;
        switch (::GetWindowLongW(window, GWL_STYLE) & BS_TYPEMASK) {
        case BS_CHECKBOX: return ROLE_SYSTEM_CHECKBUTTON;
        case BS_GROUPBOX: return ROLE_SYSTEM_GROUPING;
        default: return ROLE_SYSTEM_PUSHBUTTON;
        }
    }

    [[nodiscard]] bool hasState(HWND window, long state) const
    {
        if (state == STATE_SYSTEM_CHECKED)
            return ::SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED;
        return (numberOf(window, &IAccessible::get_accState) & state) != 0;
    }

    /// The class of a window, in lower case.
    [[nodiscard]] static std::wstring kindOf(HWND window)
    {
        wchar_t kind[64] = {};
        ::GetClassNameW(window, kind, 64);
        ::CharLowerW(kind);
        return kind;
    }

private:
    struct Release {
        void operator()(IUnknown* object) const { object->Release(); }
    };
    using Object = std::unique_ptr<IAccessible, Release>;

    [[nodiscard]] static Object objectOf(HWND window)
    {
        // Not linked: the compiler's library of it has identifiers that another one has too.
        static const auto objectFromWindow = reinterpret_cast<decltype(&::AccessibleObjectFromWindow)>(
            reinterpret_cast<void*>(::GetProcAddress(::LoadLibraryW(L"oleacc.dll"), "AccessibleObjectFromWindow")));
        void* object = nullptr;
        objectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible, &object);
        return Object(static_cast<IAccessible*>(object));
    }

    [[nodiscard]] static VARIANT itself()
    {
        VARIANT child{};
        child.vt = VT_I4;
        child.lVal = CHILDID_SELF;
        return child;
    }

    template <class Get>
    [[nodiscard]] static std::wstring textOf(HWND window, Get get)
    {
        const Object object = objectOf(window);
        BSTR text = nullptr;
        if (object)
            (object.get()->*get)(itself(), &text);
        const std::wstring result(text ? text : L"");
        ::SysFreeString(text);
        return result;
    }

    template <class Get>
    [[nodiscard]] static long numberOf(HWND window, Get get)
    {
        const Object object = objectOf(window);
        VARIANT number{};
        if (object)
            (object.get()->*get)(itself(), &number);
        return number.vt == VT_I4 ? number.lVal : 0;
    }

    const AnnotationService& service_;
};
