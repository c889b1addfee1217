// SPDX-License-Identifier: MIT
// Records of named fields from a simulated Advantage 1200 behind the port of the argument, and the answer key that goes
// into it first: the key is an object of the host's, and each record a Scripting.Dictionary.

#include "tests/windows/clients/Host.h"

#include <cstdlib>
#include <memory>

namespace {

constexpr DISPID kReadSheet = 2;
constexpr DISPID kTranslateData = 6;
constexpr DISPID kGetQuestionsOnPage = 7;

int portUnderTest = 0;

/// A list of the host's with `Count` and `Item`; the key's classes have such lists in many languages.
class List {
public:
    explicit List(std::vector<Value> items) : items_(std::move(items)), count_(static_cast<int>(items_.size()))
    {
        object.property(L"Count", count_);
        object.member(L"Item", [this](const Call& c) {
            const LONG number = c.argument(0).lVal;
            if (number < 1 || number > static_cast<LONG>(items_.size()))
                return DISP_E_BADINDEX;
            c.give(items_[static_cast<std::size_t>(number) - 1]);
            return S_OK;
        });
    }
    HostObject object;

private:
    std::vector<Value> items_;
    Value count_;
};

struct Question {
    Question(const wchar_t* label, std::vector<Value> possible, std::vector<Value> right)
        : name(label), choices(std::move(possible)), correctAnswers(std::move(right))
    {
        object.property(L"Name", name);
        object.member(L"Choices", [this](const Call& c) { return c.give(Value(&choices.object)), S_OK; });
        object.member(L"ChoiceColumns", [this](const Call& c) { return c.give(Value(&choices.object)), S_OK; });
        object.member(L"CorrectAnswers", [this](const Call& c) { return c.give(Value(&correctAnswers.object)), S_OK; });
    }
    Value name;
    List choices;
    List correctAnswers;
    HostObject object;
};

struct Key {
    Key() : questions({Value(&first.object), Value(&second.object)})
    {
        object.property(L"FormIDs", formIDs).property(L"NumberOfPages", numberOfPages);
        object.member(L"Questions", [this](const Call& c) { return c.give(Value(&questions.object)), S_OK; });
    }
    Question first{L"Question 1", {L"A", L"B", L"C", L"D", L"E"}, {L"B,D"}};
    Question second{L"Question 2", {L"A", L"B", L"C", L"D", L"E"}, {L"E"}};
    List questions;
    Value formIDs{L"0001,0002"};
    Value numberOfPages{2};
    HostObject object;
};

class Records : public HostTest {};

TEST_F(Records, ARecordIsADictionaryOfTheSystem)
{
    // A list holds references to the questions, so the objects are told to let go of them before they end.
    auto key = std::make_unique<Key>();
    const auto reader = newReader();
    get(reader.get(), L"LoadDefaults", {Value(40)});
    put(reader.get(), L"Port", Value(portUnderTest));
    put(reader.get(), L"SleepTime", Value(50)); // the reader answers within this time, on a busy machine too
    SAFEARRAY* size = numbers({10});
    reader->put_Side1Rows(&size);
    reader->put_Side1Cols(&size);
    SafeArrayDestroy(size);
    put(reader.get(), L"AnswerKey", Value(&key->object));
    EXPECT_EQ(get(reader.get(), L"AnswerKey").object(), &key->object);

    int pagesAsked = 0;
    int records = 0;
    Value kept;
    bool sheetSeen = false;
    HostObject sink;
    sink.event(kGetQuestionsOnPage, [&](const Call& event) {
        ++pagesAsked;
        EXPECT_EQ(event.argument(0).vt, VT_BYREF | VT_I2);
        EXPECT_EQ(*event.argument(0).piVal, 1);
        *event.argument(1).piVal = 1;
        return S_OK;
    });
    sink.event(kTranslateData, [&](const Call& event) {
        EXPECT_EQ(event.count(), 5U);
        EXPECT_EQ(event.argument(0).vt, VT_BYREF | VT_DISPATCH);
        IDispatch* const record = *event.argument(0).ppdispVal;
        EXPECT_GT(get(record, L"Count").number(), 3);
        EXPECT_EQ(get(record, L"CompareMode").number(), 1);
        EXPECT_TRUE(get(record, L"Exists", {Value(L"student id")}).truth());
        EXPECT_EQ(get(record, L"Item", {Value(L"Page 1 ID")}).type(), VT_BSTR);
        EXPECT_EQ(*event.argument(3).pparray, nullptr); // barcodes are the host's to make
        if (++records == 1) {
            kept = Value(record);
            *event.argument(4).pboolVal = VARIANT_TRUE; // the second page comes as a record of its own
            return S_OK;
        }
        EXPECT_EQ(record, kept.object());
        std::array<LONG, 2> place{1, 2};
        short mark = 1;
        SafeArrayPutElement(*event.argument(1).pparray, place.data(), &mark);
        *event.argument(3).pparray = SafeArrayCreateVector(VT_BSTR, 1, 1);
        LONG index = 1;
        SafeArrayPutElement(*event.argument(3).pparray, &index,
                            get(record, L"Item", {Value(L"Student ID")}).get().bstrVal);
        *event.argument(4).pboolVal = VARIANT_FALSE;
        return S_OK;
    });
    sink.event(kReadSheet, [&](const Call& event) {
        std::array<LONG, 2> place{1, 2};
        short mark = 0;
        SafeArrayGetElement(*event.argument(0).pparray, place.data(), &mark);
        EXPECT_EQ(mark, 1);
        LONG upper = 0;
        SafeArrayGetUBound(*event.argument(2).pparray, 1, &upper);
        EXPECT_EQ(upper, 1);
        sheetSeen = true;
        return S_OK;
    });
    {
        const Connection connection(reader.get(), &sink);
        EXPECT_TRUE(get(reader.get(), L"StartReader").truth());
        EXPECT_TRUE(get(reader.get(), L"ReadPage", {Value(false)}).truth());
        EXPECT_TRUE(get(reader.get(), L"EndReader").truth());
    }
    EXPECT_EQ(pagesAsked, 1);
    EXPECT_EQ(records, 2);
    EXPECT_TRUE(sheetSeen);
    // The end of a session lets go of the key.
    EXPECT_EQ(get(reader.get(), L"AnswerKey").object(), nullptr);
    EXPECT_EQ(key->object.references, 1);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    portUnderTest = argc > 1 ? std::atoi(argv[1]) : 13;
    return RUN_ALL_TESTS();
}
