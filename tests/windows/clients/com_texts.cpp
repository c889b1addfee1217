// SPDX-License-Identifier: MIT
// Every text that passes between a host and the component, in the code page of the argument: settings under a key,
// print lines, barcodes, fields of a record, an answer key, and the bytes of a line. A simulated Advantage
// 1200 is behind the second argument's port, a port that sends back what it is asked for behind the third's, and a
// simulated USB reader in the maker's library.

#include "tests/windows/clients/ErrorLog.h"
#include "tests/windows/clients/OwnCarrier.h"

#include <cstdlib>

namespace {

constexpr DISPID kReadSheet = 2;
constexpr DISPID kTranslateData = 6;

/// Texts of a code page.
struct Page {
    UINT number;
    const wchar_t* text;    // letters beyond ASCII, in 6 bytes
    const wchar_t* sibling; // as long, with others of them
    const wchar_t* foreign; // letters that the code page does not have
    const wchar_t* letter;  // one that it has
    const wchar_t* formID;  // letters beyond ASCII, in 4 bytes
};
constexpr std::array kPages{
    // The third character's second byte is a backslash's code.
    Page{1252, L"Pr\u00fc\u00dfe\u20ac", L"Pr\u00e4\u00dfe\u20ac", L"\u8a66\u9a13", L"\u00c4", L"Pr\u00fc\u00df"},
    Page{932, L"\u8a66\u9a13\u30bd", L"\u8cc7\u683c\u30bd", L"Pr\u00fcfung", L"\u8a66", L"\u8a66\u9a13"},
};
const Page* page = nullptr;
int recordsPort = 0;
int echoPort = 0;

std::string shown(const std::wstring& text)
{
    std::string all;
    for (const wchar_t character : text)
        all += "\\u" + std::to_string(static_cast<unsigned>(character));
    return all;
}
#define EXPECT_TEXT(given, expected) EXPECT_EQ(shown(given), shown(expected))

class Texts : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        ASSERT_EQ(GetACP(), page->number);
        reader_ = newReader();
        registered_ = std::make_unique<Registered>(reader_.get(), &log_.object);
    }
    void TearDown() override
    {
        registered_.reset();
        reader_ = Ptr<_clsKELReader>();
        HostTest::TearDown();
    }
    _clsKELReader* reader() { return reader_.get(); }

    ErrorLog log_;

private:
    Ptr<_clsKELReader> reader_;
    std::unique_ptr<Registered> registered_;
};

/// The component's texts are kept under this key of the user's.
const std::wstring kTestKey = L"Software\\KELReader texts";

bool keyExists(const std::wstring& subKey)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, subKey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

std::wstring storedText(const std::wstring& subKey, const wchar_t* name)
{
    std::array<wchar_t, 64> text{};
    DWORD size = sizeof(text);
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, subKey.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &size),
              ERROR_SUCCESS);
    return text.data();
}

TEST_F(Texts, SettingsLieUnderTheKeyThatTheHostNames)
{
    const Value hive(static_cast<int>(kelReaderRegistryKeyCurrentUser));
    const std::array names{page->text, page->sibling, page->foreign};
    for (int index = 0; index < 3; ++index) {
        put(reader(), L"Port", Value(index + 3));
        const std::wstring key = kTestKey + L"\\" + names[static_cast<std::size_t>(index)];
        EXPECT_TRUE(get(reader(), L"SaveSettings", {hive, Value(key.c_str())}).truth());
    }
    EXPECT_TRUE(keyExists(kTestKey + L"\\" + page->text));
    EXPECT_TRUE(keyExists(kTestKey + L"\\" + page->sibling));
    for (int index = 0; index < 3; ++index) {
        const std::wstring key = kTestKey + L"\\" + names[static_cast<std::size_t>(index)];
        EXPECT_TRUE(get(reader(), L"LoadSettings", {hive, Value(key.c_str())}).truth());
        EXPECT_EQ(get(reader(), L"Port").number(), index + 3);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey.c_str());
}

TEST_F(Texts, AValueOfTheSettingsComesBack)
{
    const Value hive(static_cast<int>(kelReaderRegistryKeyCurrentUser));
    put(reader(), L"Parity", Value(page->letter));
    EXPECT_TEXT(get(reader(), L"Parity").text(), page->letter);
    EXPECT_TRUE(get(reader(), L"SaveSettings", {hive, Value(kTestKey.c_str())}).truth());
    EXPECT_TEXT(storedText(kTestKey, L"ScannerParity"), page->letter);
    put(reader(), L"Parity", Value(L"E"));
    EXPECT_TRUE(get(reader(), L"LoadSettings", {hive, Value(kTestKey.c_str())}).truth());
    EXPECT_TEXT(get(reader(), L"Parity").text(), page->letter);
    RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey.c_str());
}

TEST_F(Texts, ATextForPeopleMayHoldAnyLetter)
{
    for (const wchar_t* text : {page->text, page->foreign}) {
        put(reader(), L"HelpFile", Value(text));
        EXPECT_TEXT(get(reader(), L"HelpFile").text(), text);
    }
    put(reader(), L"HelpFile", Value(L""));
    EXPECT_FALSE(get(get(reader(), L"Profiles").object(), L"Exists", {Value(page->text)}).truth());
}

/// This program runs in German.
TEST_F(Texts, AReportHasTheLettersOfItsLanguageWhateverTheCodePage)
{
    get(reader(), L"LoadDefaults", {Value(13)});
    put(reader(), L"Port", Value(17));
    EXPECT_FALSE(get(reader(), L"StartReader").truth());
    EXPECT_TEXT(log_.titles, L"Anschluss nicht zul\u00e4ssig\n");
    EXPECT_TEXT(log_.texts, L"Der Anschluss 17 ist nicht zul\u00e4ssig. W\u00e4hlen Sie in den Einstellungen des "
                            L"Leseger\u00e4ts einen Anschluss von 1 bis 16 und starten Sie dann erneut.\n");
}

TEST_F(Texts, PrintLinesHoldTheLettersOfTheCodePage)
{
    const Value printer = get(reader(), L"Printer");
    for (const wchar_t* line : {L"Buffer1", L"Buffer2", L"Buffer3"}) {
        put(printer.object(), line, Value(page->text));
        EXPECT_TEXT(get(printer.object(), line).text(), page->text);
    }
    put(printer.object(), L"Buffer1", Value(L"\u4e00\u05d0"));
    EXPECT_TEXT(get(printer.object(), L"Buffer1").text(), page->number == 932 ? L"\u4e00?" : L"??");
}

/// What is printed stands in the simulated library's log, which whoever starts this program looks into.
TEST_F(Texts, BarcodesComeAndPrintLinesGoAsTheMakersLibraryHasThem)
{
    get(reader(), L"LoadDefaults", {Value(30)});
    put(reader(), L"Barcode", Value(true));
    const auto zone = create<_clsKELReaderBarcode>(CLSID_clsKELReaderBarcode);
    zone->put_Distance(10);
    zone->put_Length(50);
    get(get(reader(), L"Barcodes").object(), L"Add", {Value(static_cast<IDispatch*>(zone.get()))});
    const Value printer = get(reader(), L"Printer");
    put(printer.object(), L"Enabled", Value(true));
    put(printer.object(), L"Active", Value(true));
    put(printer.object(), L"Buffer2", Value(page->text));

    const auto barcode = [](const Call& event) {
        LONG index = 1;
        BSTR text = nullptr;
        EXPECT_EQ(SafeArrayGetElement(*event.argument(2).pparray, &index, &text), S_OK);
        const std::wstring read(text, SysStringLen(text));
        SysFreeString(text);
        return read;
    };
    int sheets = 0;
    HostObject sink;
    sink.event(kReadSheet, [&](const Call& event) {
        EXPECT_TEXT(barcode(event), page->text);
        LONG index = 1;
        BSTR text = SysAllocString(page->sibling);
        EXPECT_EQ(SafeArrayPutElement(*event.argument(2).pparray, &index, text), S_OK);
        SysFreeString(text);
        return S_OK;
    });
    HostObject next;
    next.event(kReadSheet, [&](const Call& event) {
        ++sheets;
        EXPECT_TEXT(barcode(event), page->sibling);
        return S_OK;
    });
    {
        const Connection first(reader(), &sink);
        const Connection second(reader(), &next);
        LONG count = 0;
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(reader()->ReadBatch(VARIANT_TRUE, 1, &count, &done), S_OK);
    }
    EXPECT_EQ(sheets, 1);
    EXPECT_TEXT(log_.reports + log_.texts, L"");
}

/// A list of the host's as an array, whose elements are values.
Value list(const std::vector<Value>& items)
{
    Value array;
    array.get().parray = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(items.size()));
    array.get().vt = VT_ARRAY | VT_VARIANT;
    for (LONG index = 0; index < static_cast<LONG>(items.size()); ++index)
        SafeArrayPutElement(array.get().parray, &index,
                            const_cast<VARIANT*>(&items[static_cast<std::size_t>(index)].get()));
    return array;
}

TEST_F(Texts, AnAnswerKeyGoesAndARecordComes)
{
    Value name(L"Question 1");
    Value choices = list({Value(L"A"), Value(page->text), Value(page->foreign), Value(L"D"), Value(L"E")});
    Value answers = list({Value((std::wstring(page->text) + L"," + page->foreign).c_str())});
    HostObject question;
    question.property(L"Name", name).property(L"Choices", choices).property(L"ChoiceColumns", choices);
    question.property(L"CorrectAnswers", answers);
    HostObject key;
    Value formIDs(page->formID);
    Value pages(1);
    key.property(L"FormIDs", formIDs).property(L"NumberOfPages", pages);
    key.member(L"Questions", [&](const Call& c) { return c.give(list({Value(&question)})), S_OK; });

    const Value own = get(reader(), L"fComm");
    OwnCarrier carrier(own.object());
    put(reader(), L"fComm", Value(&carrier.object()));
    get(reader(), L"LoadDefaults", {Value(40)});
    put(reader(), L"Port", Value(recordsPort));
    put(reader(), L"SleepTime", Value(50));
    SAFEARRAY* size = numbers({1});
    reader()->put_Side1Rows(&size);
    reader()->put_Side1Cols(&size);
    SafeArrayDestroy(size);
    put(reader(), L"AnswerKey", Value(&key));

    std::wstring student;
    HostObject sink;
    sink.event(kTranslateData, [&](const Call& event) {
        student = get(*event.argument(0).ppdispVal, L"Item", {Value(L"Student ID")}).text();
        return S_OK;
    });
    {
        const Connection connection(reader(), &sink);
        EXPECT_TRUE(get(reader(), L"StartReader").truth());
        EXPECT_TRUE(get(reader(), L"ReadPage", {Value(false)}).truth());
        EXPECT_TRUE(get(reader(), L"EndReader").truth());
    }
    put(reader(), L"fComm", own);
    EXPECT_TEXT(student, page->text);
    // The form's number in letters of the code page, and the second and third choice of five.
    EXPECT_NE(carrier.sent.find(L"K7" + std::wstring(page->formID)), std::wstring::npos) << shown(carrier.sent);
    EXPECT_NE(carrier.sent.find(L"01100Q"), std::wstring::npos) << shown(carrier.sent);
    EXPECT_TEXT(log_.reports + log_.texts, L"");
}

TEST_F(Texts, NoByteOfALineIsLost)
{
    const Value carrier = get(reader(), L"fComm");
    const Value control = get(carrier.object(), L"mscComm");
    put(control.object(), L"CommPort", Value(echoPort));
    put(control.object(), L"Settings", Value(L"9600,n,8,1"));
    put(control.object(), L"PortOpen", Value(true));
    const auto received = [&](int count) {
        while (get(control.object(), L"InBufferCount").number() < count)
            Sleep(1);
        return get(control.object(), L"Input");
    };
    const auto bytes = [](const std::vector<int>& codes) {
        Value array;
        array.get().parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(codes.size()));
        array.get().vt = VT_ARRAY | VT_UI1;
        for (LONG index = 0; index < static_cast<LONG>(codes.size()); ++index) {
            BYTE byte = static_cast<BYTE>(codes[static_cast<std::size_t>(index)]);
            SafeArrayPutElement(array.get().parray, &index, &byte);
        }
        return array;
    };
    // Each byte with every one of some others after it, as pairs of letters and as no such pairs.
    for (int first = 0x80; first <= 0xFF; ++first) {
        std::vector<int> order{'e', 'c', 'h', 'o', ' '};
        for (const int second : {0x20, 0x40, 0x5C, 0x7E, 0x80, 0x81, 0x9F, 0xA0, 0xE0, 0xFC, 0xFF}) {
            order.push_back(first);
            order.push_back(second);
        }
        const int count = static_cast<int>(order.size()) - 5;
        order.push_back('\n');
        put(control.object(), L"Output", bytes(order));
        const Value text = received(count);
        // What a host passes on as it came is what the line had.
        put(control.object(), L"Output", Value((L"echo " + text.text() + L"\n").c_str()));
        EXPECT_TEXT(received(count).text(), text.text()) << first;
    }
    put(control.object(), L"PortOpen", Value(false));
}

TEST_F(Texts, ALineSendsTheLettersOfTheCodePage)
{
    const Value carrier = get(reader(), L"fComm");
    const Value control = get(carrier.object(), L"mscComm");
    put(control.object(), L"CommPort", Value(echoPort));
    put(control.object(), L"PortOpen", Value(true));
    put(control.object(), L"Output", Value((L"echo " + std::wstring(page->text) + L"\n").c_str()));
    while (get(control.object(), L"InBufferCount").number() < 6)
        Sleep(1);
    EXPECT_EQ(get(control.object(), L"InBufferCount").number(), 6); // bytes
    EXPECT_TEXT(get(control.object(), L"Input").text(), page->text);
    put(control.object(), L"PortOpen", Value(false));
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const auto number = static_cast<UINT>(argc > 1 ? std::atoi(argv[1]) : 1252);
    for (const Page& known : kPages) {
        if (known.number == number)
            page = &known;
    }
    recordsPort = argc > 2 ? std::atoi(argv[2]) : 13;
    echoPort = argc > 3 ? std::atoi(argv[3]) : 12;
    return page ? RUN_ALL_TESTS() : EXIT_FAILURE;
}
