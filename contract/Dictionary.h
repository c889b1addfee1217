// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Numbers.h"
#include "types/SourceLocation.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace kel {

class DictionaryObject;

/// A key of a dictionary: a whole number or a text. The number 1 and the text "1" are two keys.
using DictionaryKey = std::variant<Int32, std::string>;

/// The value of a key: empty, a whole number or a text.
using DictionaryItem = std::variant<std::monostate, Int32, std::string>;

/// An item as text: a number in decimal, an empty item as an empty text.
[[nodiscard]] KEL_PUBLIC std::string itemText(const DictionaryItem& item);

/// Values of `Dictionary::CompareMode`: text keys are compared exactly, or without regard to the case of
/// ASCII letters.
inline constexpr Int32 kBinaryCompare = 0;
inline constexpr Int32 kTextCompare = 1;

/// Items in the order in which their keys were added, each found by its key: the dictionary that scripting hosts
/// know, with its members and their behaviour. It may be copied.
class KEL_PUBLIC Dictionary {
public:
    Dictionary();
    Dictionary(const Dictionary& other);
    Dictionary& operator=(const Dictionary& other);
    ~Dictionary();

    /// How text keys are compared; a new dictionary compares them exactly. To be set while the dictionary is empty;
    /// failure 5 afterwards, and for any other value.
    [[nodiscard]] Int32 CompareMode() const;
    void CompareMode(Int32 mode, SourceLocation where = SourceLocation::current());

    /// Adds an item at the end. A key that already exists is failure 457.
    void Add(const DictionaryKey& key, DictionaryItem item, SourceLocation where = SourceLocation::current());

    /// Whether there is an entry of that key; none is added.
    [[nodiscard]] Boolean Exists(const DictionaryKey& key) const;

    /// The item of a key. Asking for a missing key adds it, with an empty item.
    [[nodiscard]] DictionaryItem Item(const DictionaryKey& key);
    /// Sets the item of a key, and adds a missing key.
    void Item(const DictionaryKey& key, DictionaryItem item);

    /// Changes the key of an entry; its item and its position stay. Failure 32811 when `key` is missing, 457 when
    /// `newKey` belongs to another entry.
    void Key(const DictionaryKey& key, const DictionaryKey& newKey, SourceLocation where = SourceLocation::current());

    /// Keys and items in their order.
    [[nodiscard]] std::vector<DictionaryKey> Keys() const;
    [[nodiscard]] std::vector<DictionaryItem> Items() const;
    [[nodiscard]] Int32 Count() const;

    /// Removes an entry. A missing key is failure 32811 "Element not found".
    void Remove(const DictionaryKey& key, SourceLocation where = SourceLocation::current());
    /// Empties the dictionary; `CompareMode` stays.
    void RemoveAll();

private:
    friend Dictionary newDictionary();
    friend std::shared_ptr<DictionaryObject> objectOf(const Dictionary& dictionary);

    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
