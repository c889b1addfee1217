// SPDX-License-Identifier: MIT
#include "contract/Dictionary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel {
namespace {

using testing::ElementsAre;

/// The number of the failure that `body` ends in, 0 for none.
template <class Body>
Int32 failureOf(Body&& body)
{
    try {
        body();
    } catch (const RuntimeFailure& failure) {
        return failure.number();
    }
    return 0;
}

TEST(Dictionary, KeepsTheOrderInWhichKeysWereAdded)
{
    Dictionary dictionary;
    dictionary.Add("Student ID", "12");
    dictionary.Add(2, "B");
    dictionary.Add(1, 7);
    dictionary.Add("Class ID", "");
    EXPECT_EQ(dictionary.Count(), 4);
    EXPECT_THAT(dictionary.Keys(), ElementsAre(DictionaryKey("Student ID"), DictionaryKey(2), DictionaryKey(1),
                                               DictionaryKey("Class ID")));
    EXPECT_THAT(dictionary.Items(),
                ElementsAre(DictionaryItem("12"), DictionaryItem("B"), DictionaryItem(7), DictionaryItem("")));
}

TEST(Dictionary, NumbersAndTextsAreDifferentKeys)
{
    Dictionary dictionary;
    dictionary.Add(1, "number");
    dictionary.Add("1", "text");
    EXPECT_EQ(itemText(dictionary.Item(1)), "number");
    EXPECT_EQ(itemText(dictionary.Item("1")), "text");
    EXPECT_EQ(dictionary.Exists(2), False);
    EXPECT_EQ(dictionary.Exists("2"), False);
}

TEST(Dictionary, AddRefusesAKeyThatIsThere)
{
    Dictionary dictionary;
    dictionary.Add("a", "first");
    EXPECT_EQ(failureOf([&] { dictionary.Add("a", "second"); }), 457);
    dictionary.Add(3, "third");
    EXPECT_EQ(failureOf([&] { dictionary.Add(3, "fourth"); }), 457);
    EXPECT_EQ(dictionary.Count(), 2);
    EXPECT_EQ(itemText(dictionary.Item("a")), "first");
}

TEST(Dictionary, ComparesTextsExactlyUnlessToldOtherwise)
{
    Dictionary exact;
    EXPECT_EQ(exact.CompareMode(), kBinaryCompare);
    exact.Add("Test ID", "1");
    EXPECT_EQ(exact.Exists("TEST ID"), False);
    exact.Add("TEST ID", "2");
    EXPECT_EQ(exact.Count(), 2);

    Dictionary blind;
    blind.CompareMode(kTextCompare);
    EXPECT_EQ(blind.CompareMode(), kTextCompare);
    blind.Add("Test ID", "1");
    EXPECT_EQ(blind.Exists("TEST id"), True);
    EXPECT_EQ(itemText(blind.Item("test ID")), "1");
    EXPECT_EQ(failureOf([&] { blind.Add("TEST ID", "2"); }), 457);
    EXPECT_THAT(blind.Keys(), ElementsAre(DictionaryKey("Test ID"))); // as it was added
}

TEST(Dictionary, CompareModeIsSetWhileEmpty)
{
    Dictionary dictionary;
    EXPECT_EQ(failureOf([&] { dictionary.CompareMode(7); }), 5);
    dictionary.Add(1, "A");
    EXPECT_EQ(failureOf([&] { dictionary.CompareMode(kTextCompare); }), 5);
    EXPECT_EQ(dictionary.CompareMode(), kBinaryCompare);
    dictionary.RemoveAll();
    dictionary.CompareMode(kTextCompare);
    dictionary.RemoveAll();
    EXPECT_EQ(dictionary.CompareMode(), kTextCompare);
}

TEST(Dictionary, AskingForAMissingKeyAddsIt)
{
    Dictionary dictionary;
    EXPECT_EQ(dictionary.Item("new"), DictionaryItem());
    EXPECT_EQ(dictionary.Exists("new"), True);
    EXPECT_EQ(itemText(dictionary.Item("new")), "");
    EXPECT_EQ(dictionary.Count(), 1);
}

TEST(Dictionary, SettingAnItemAddsOrReplaces)
{
    Dictionary dictionary;
    dictionary.Item("a", "1");
    dictionary.Item("b", 2);
    dictionary.Item("a", "3");
    EXPECT_THAT(dictionary.Keys(), ElementsAre(DictionaryKey("a"), DictionaryKey("b")));
    EXPECT_THAT(dictionary.Items(), ElementsAre(DictionaryItem("3"), DictionaryItem(2)));
}

TEST(Dictionary, KeyRenamesAnEntryInItsPlace)
{
    Dictionary dictionary;
    dictionary.CompareMode(kTextCompare);
    dictionary.Add("a", "1");
    dictionary.Add("b", "2");
    dictionary.Key("a", 9);
    EXPECT_THAT(dictionary.Keys(), ElementsAre(DictionaryKey(9), DictionaryKey("b")));
    EXPECT_EQ(itemText(dictionary.Item(9)), "1");
    EXPECT_EQ(dictionary.Exists("a"), False);

    EXPECT_EQ(failureOf([&] { dictionary.Key("a", "c"); }), 32811);
    EXPECT_EQ(failureOf([&] { dictionary.Key("b", 9); }), 457);
    dictionary.Key("b", "B"); // its own key in another case
    EXPECT_THAT(dictionary.Keys(), ElementsAre(DictionaryKey(9), DictionaryKey("B")));
    EXPECT_EQ(itemText(dictionary.Item("b")), "2");
}

TEST(Dictionary, RemoveKeepsTheOthersInOrder)
{
    Dictionary dictionary;
    for (Int32 key = 1; key <= 4; ++key)
        dictionary.Add(key, key * 10);
    dictionary.Remove(2);
    EXPECT_THAT(dictionary.Keys(), ElementsAre(DictionaryKey(1), DictionaryKey(3), DictionaryKey(4)));
    EXPECT_EQ(dictionary.Item(1), DictionaryItem(10));
    EXPECT_EQ(dictionary.Item(3), DictionaryItem(30));
    EXPECT_EQ(dictionary.Item(4), DictionaryItem(40));
    dictionary.Add(2, 99);
    EXPECT_EQ(dictionary.Items().back(), DictionaryItem(99));
}

TEST(Dictionary, RemovingAMissingKeyFails)
{
    Dictionary dictionary;
    dictionary.Add(1, "A");
    try {
        dictionary.Remove("1");
        FAIL() << "nothing was refused";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.number(), 32811);
        EXPECT_EQ(failure.text(), "Element not found");
    }
    EXPECT_EQ(dictionary.Count(), 1);
}

TEST(Dictionary, RemoveAllEmptiesIt)
{
    Dictionary dictionary;
    dictionary.Add(1, "A");
    dictionary.Add("x", "B");
    dictionary.RemoveAll();
    EXPECT_EQ(dictionary.Count(), 0);
    EXPECT_EQ(dictionary.Exists(1), False);
    dictionary.Add(1, "C");
    EXPECT_EQ(itemText(dictionary.Item(1)), "C");
}

TEST(Dictionary, ACopyStandsByItself)
{
    Dictionary dictionary;
    dictionary.Add("a", "1");
    Dictionary copy = dictionary;
    dictionary.Item("a", "2");
    dictionary.Remove("a");
    EXPECT_EQ(itemText(copy.Item("a")), "1");
}

TEST(Dictionary, ItemsAsText)
{
    EXPECT_EQ(itemText({}), "");
    EXPECT_EQ(itemText("A\tB"), "A\tB");
    EXPECT_EQ(itemText(-5), "-5");
}

} // namespace
} // namespace kel
