// SPDX-License-Identifier: MIT
// ShowOptions as a host calls it, while a second thread works the dialog as a user does. The argument is a port that
// can be opened.

#include "tests/windows/OtherProgram.h"
#include "tests/windows/clients/Host.h"

#include <cstdlib>
#include <memory>
#include <optional>

namespace {

constexpr int kScanmark2500 = 13;
constexpr int kVmr138 = 24;
const wchar_t* const kVmr138Name = L"Peripheral Dynamics Inc. VMR138";

int portUnderTest = 0;

/// The dialog's controls by what they show; a host does not know their numbers.
class User : public OtherProgram {
public:
    /// Chooses a row of the list that has it.
    void choose(const wchar_t* row) const
    {
        const HWND list = find([&](HWND window) {
            return kindOf(window) == L"ComboBox" && SendMessageW(window, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                                                 reinterpret_cast<LPARAM>(row)) >= 0;
        });
        ASSERT_NE(list, nullptr);
        select(GetDlgCtrlID(list), row);
    }

    /// Types into the field with a text.
    void replace(const wchar_t* before, const wchar_t* after) const
    {
        const HWND field = find([&](HWND window) { return kindOf(window) == L"Edit" && textOf(window) == before; });
        ASSERT_NE(field, nullptr) << "no field shows " << before;
        enter(GetDlgCtrlID(field));
        type(GetDlgCtrlID(field), after);
    }

    HWND owner() const { return GetWindow(dialog, GW_OWNER); }

private:
    template <class Match>
    HWND find(Match match) const
    {
        for (HWND each = GetWindow(dialog, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT)) {
            if (match(each))
                return each;
        }
        return nullptr;
    }

    static std::wstring kindOf(HWND window)
    {
        std::array<wchar_t, 64> kind{};
        GetClassNameW(window, kind.data(), static_cast<int>(kind.size()));
        return kind.data();
    }
};

/// A window of the host's, to own the dialog.
class OwnerWindow {
public:
    OwnerWindow()
        : handle(CreateWindowW(L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr,
                               nullptr, nullptr))
    {
    }
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;
    ~OwnerWindow() { DestroyWindow(handle); }

    /// Window handles have 32 significant bits.
    int number() const { return static_cast<int>(reinterpret_cast<INT_PTR>(handle)); }

    const HWND handle;
};

class Options : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        reader_ = newReader();
        ASSERT_TRUE(reader_);
        ASSERT_TRUE(get(reader_.get(), L"LoadDefaults", {Value(kScanmark2500)}).truth());
        reader_->put_Port(static_cast<short>(portUnderTest));
    }
    void TearDown() override
    {
        reader_ = {};
        HostTest::TearDown();
    }

    /// Runs a call that shows the dialog, while the user acts; what the user leaves open is closed.
    template <class Call, class Actions>
    static auto during(Call call, Actions actions)
    {
        std::thread user([&] {
            const User at;
            ASSERT_NE(at.dialog, nullptr) << "no dialog";
            actions(at);
            if (IsWindow(at.dialog))
                PostMessageW(at.dialog, WM_CLOSE, 0, 0);
        });
        const auto result = call();
        user.join();
        return result;
    }

    /// By the vtable.
    template <class Actions>
    bool show(const Value& parent, Actions actions)
    {
        VARIANT_BOOL result = 77;
        EXPECT_EQ(during([&] { return reader_->ShowOptions(parent.get(), &result); }, actions), S_OK);
        EXPECT_TRUE(result == VARIANT_TRUE || result == VARIANT_FALSE) << result;
        return result == VARIANT_TRUE;
    }

    /// By name.
    template <class Actions>
    bool showByName(const std::vector<Value>& arguments, Actions actions)
    {
        const Outcome outcome =
            during([&] { return call(reader_.get(), L"ShowOptions", DISPATCH_METHOD, arguments); }, actions);
        EXPECT_EQ(outcome.code, S_OK);
        EXPECT_EQ(outcome.result.type(), VT_BOOL);
        return outcome.result.truth();
    }

    int number(const wchar_t* property) { return get(reader_.get(), property).number(); }

    static Value missing()
    {
        Value value;
        value.get().vt = VT_ERROR;
        value.get().scode = DISP_E_PARAMNOTFOUND;
        return value;
    }

    Ptr<_clsKELReader> reader_;
};

TEST_F(Options, WithOkTheReaderHasWhatTheUserChose)
{
    EXPECT_TRUE(show(missing(), [](const User& user) {
        user.choose(kVmr138Name);
        user.replace(L"10", L"7"); // the time-out
        user.click(IDOK);
    }));
    EXPECT_EQ(number(L"ReaderType"), kVmr138);
    EXPECT_EQ(get(reader_.get(), L"ReaderName").text(), kVmr138Name);
    EXPECT_EQ(number(L"Port"), portUnderTest);
    EXPECT_EQ(number(L"Timeout"), 7);

    // The rest is the model's own.
    const auto fresh = newReader();
    get(fresh.get(), L"LoadDefaults", {Value(kVmr138)});
    for (const wchar_t* property : {L"BaudRate", L"DataBits", L"StopBits", L"Parity", L"FlowControl", L"SleepTime",
                                    L"Duplex", L"Barcode", L"Feeder", L"Rejecter", L"Windowing", L"ReaderGrade",
                                    L"RecognitionThreshold", L"MarkCutOff", L"MarkDiscrimination"})
        EXPECT_EQ(get(reader_.get(), property).text(), get(fresh.get(), property).text()) << property;
}

TEST_F(Options, WithCancelOrWithoutADecisionNothingChanges)
{
    reader_->put_SleepTime(4321);
    const auto change = [](const User& user) {
        user.choose(kVmr138Name);
        user.replace(L"10", L"7");
    };
    EXPECT_FALSE(show(missing(), [&](const User& user) {
        change(user);
        user.click(IDCANCEL);
    }));
    EXPECT_FALSE(showByName({}, change)); // closed by its frame
    EXPECT_EQ(number(L"ReaderType"), kScanmark2500);
    EXPECT_EQ(number(L"SleepTime"), 4321);
    EXPECT_EQ(number(L"Timeout"), 10);
    EXPECT_EQ(number(L"Port"), portUnderTest);
}

TEST_F(Options, ByNameTheParentMayBeLeftOut)
{
    EXPECT_TRUE(showByName({}, [](const User& user) {
        EXPECT_EQ(user.owner(), nullptr);
        user.choose(kVmr138Name);
        user.click(IDOK);
    }));
    EXPECT_EQ(number(L"ReaderType"), kVmr138);
    EXPECT_TRUE(showByName({missing()}, [](const User& user) { user.click(IDOK); }));
    EXPECT_EQ(number(L"ReaderType"), kVmr138);
}

TEST_F(Options, TheParentIsAHandleOrAFormWithOne)
{
    const OwnerWindow owner;
    Value handle(owner.number());
    HostObject form;
    form.property(L"hWnd", handle);
    Value wide;
    wide.get().vt = VT_I8;
    wide.get().llVal = reinterpret_cast<INT_PTR>(owner.handle);
    Value reference;
    reference.get().vt = VT_BYREF | VT_I4;
    reference.get().plVal = &handle.get().lVal;

    const auto isOwned = [&](const User& user) {
        EXPECT_EQ(user.owner(), owner.handle);
        EXPECT_FALSE(IsWindowEnabled(owner.handle));
        user.click(IDOK);
    };
    EXPECT_TRUE(show(handle, isOwned));
    EXPECT_TRUE(show(wide, isOwned));
    EXPECT_TRUE(show(reference, isOwned));
    EXPECT_TRUE(show(Value(&form), isOwned));
    EXPECT_TRUE(showByName({handle}, isOwned));
    EXPECT_TRUE(showByName({Value(&form)}, isOwned));
    EXPECT_TRUE(IsWindowEnabled(owner.handle));
    EXPECT_EQ(form.references, 1);
}

TEST_F(Options, WhatIsNoParentIsAMistakeOfTheCall)
{
    VARIANT_BOOL result = VARIANT_TRUE;
    HostObject noForm;
    EXPECT_EQ(reader_->ShowOptions(Value(L"a window").get(), &result), static_cast<HRESULT>(0x800A000D));
    EXPECT_EQ(reader_->ShowOptions(Value(&noForm).get(), &result), static_cast<HRESULT>(0x800A01B6));
}

/// An error object, with what it was told.
class ErrorListener {
public:
    ErrorListener(_clsKELReader* reader, HostObject::Member setFont) : reader_(reader)
    {
        object_.property(L"Silent", silent_);
        object_.member(L"RaiseError", [this](const Call& c) {
            reports.emplace_back(c.argument(0).lVal, c.argument(3).bstrVal);
            c.give(Value(1));
            return S_OK;
        });
        if (setFont)
            object_.member(L"SetFont", std::move(setFont));
        EXPECT_TRUE(get(reader_, L"SetError", {Value(&object_)}).truth());
    }
    ErrorListener(const ErrorListener&) = delete;
    ErrorListener& operator=(const ErrorListener&) = delete;
    ~ErrorListener() { get(reader_, L"SetError", {Value(static_cast<IDispatch*>(nullptr))}); }

    std::vector<std::pair<LONG, std::wstring>> reports;

private:
    _clsKELReader* reader_;
    Value silent_{false};
    HostObject object_;
};

TEST_F(Options, TheErrorObjectGetsTheFormOnce)
{
    int calls = 0;
    HWND told = nullptr;
    Value form;
    std::unique_ptr<ErrorListener> errors =
        std::make_unique<ErrorListener>(reader_.get(), [&](const Call& c) -> HRESULT {
            ++calls;
            EXPECT_EQ(c.flags, DISPATCH_METHOD);
            EXPECT_EQ(c.count(), 1U);
            EXPECT_EQ(c.argument(0).vt, VT_DISPATCH);
            VariantCopy(form.out(), &c.argument(0));
            told = reinterpret_cast<HWND>(static_cast<INT_PTR>(get(form.object(), L"hWnd").number()));
            EXPECT_TRUE(IsWindow(told));
            EXPECT_FALSE(IsWindowVisible(told)); // before anybody sees it
            return S_OK;
        });
    HWND shown = nullptr;
    EXPECT_TRUE(show(missing(), [&](const User& user) {
        shown = user.dialog;
        user.click(IDOK);
    }));
    EXPECT_EQ(calls, 1);
    EXPECT_NE(told, nullptr);
    EXPECT_EQ(told, shown);
    EXPECT_EQ(errors->reports.size(), 0U);
    EXPECT_FALSE(IsWindow(told));

    // A form that a host keeps is only an object with a number.
    EXPECT_EQ(get(form.object(), L"hWnd").number(), static_cast<int>(reinterpret_cast<INT_PTR>(told)));
}

/// The height of the characters in a window's texts.
LONG fontHeight(HWND window)
{
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof font, &font);
    return font.lfHeight;
}

TEST_F(Options, AFontThatTheErrorObjectSetsIsTheDialogs)
{
    constexpr LONG height = -31;
    RECT plain{};
    EXPECT_FALSE(show(missing(), [&](const User& user) {
        EXPECT_NE(fontHeight(user.control(IDOK)), height);
        GetWindowRect(user.dialog, &plain);
    }));

    ErrorListener errors(reader_.get(), [&](const Call& c) -> HRESULT {
        LOGFONTW wanted{};
        wanted.lfHeight = height;
        const HFONT font = CreateFontIndirectW(&wanted);
        const int window = get(c.argument(0).pdispVal, L"hWnd").number();
        SendMessageW(reinterpret_cast<HWND>(static_cast<INT_PTR>(window)), WM_SETFONT, reinterpret_cast<WPARAM>(font),
                     TRUE);
        DeleteObject(font); // the dialog keeps none of the host's
        return S_OK;
    });
    EXPECT_TRUE(show(missing(), [&](const User& user) {
        RECT large{};
        GetWindowRect(user.dialog, &large);
        EXPECT_EQ(fontHeight(user.control(IDOK)), height);
        EXPECT_GT(large.right - large.left, plain.right - plain.left);
        EXPECT_GT(large.bottom - large.top, plain.bottom - plain.top);
        user.click(IDOK);
    }));
    EXPECT_EQ(errors.reports.size(), 0U);
}

TEST_F(Options, ASetFontThatFailsIsReportedAndTheDialogCanBeCancelled)
{
    const auto show = [&](ErrorListener& errors, LONG code) {
        EXPECT_FALSE(this->show(missing(), [](const User& user) { user.click(IDCANCEL); }));
        ASSERT_EQ(errors.reports.size(), 1U);
        EXPECT_EQ(errors.reports[0].first, code);
        EXPECT_TRUE(errors.reports[0].second.starts_with(L"frmOptions.Form_Load, line ")) << errors.reports[0].second;
        EXPECT_EQ(number(L"ReaderType"), kScanmark2500);
    };
    {
        ErrorListener errors(reader_.get(), [](const Call& c) { return c.fail(0x800A0005, L"no such font"); });
        show(errors, 5);
    }
    ErrorListener withoutIt(reader_.get(), nullptr);
    show(withoutIt, 438);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    portUnderTest = argc > 1 ? std::atoi(argv[1]) : 14;
    return RUN_ALL_TESTS();
}
