// SPDX-License-Identifier: MIT
#include "contract/DictionaryObject.h"

#include "types/Text.h"

#include <atomic>
#include <cstddef>
#include <map>

namespace kel {

namespace {

constexpr Int32 kElementNotFound = 32811;

std::atomic<DictionaryObjectCreator> objectCreator = nullptr;

} // namespace

std::string itemText(const DictionaryItem& item)
{
    if (const auto* text = std::get_if<std::string>(&item))
        return *text;
    if (const auto* number = std::get_if<Int32>(&item))
        return CStr(*number);
    return {};
}

struct Dictionary::Fields {
    struct Entry {
        DictionaryKey key;
        DictionaryItem item;
    };

    [[nodiscard]] DictionaryKey comparable(const DictionaryKey& key) const
    {
        const auto* text = std::get_if<std::string>(&key);
        return text && lCompareMode == kTextCompare ? DictionaryKey(lowerCase(*text)) : key;
    }

    [[nodiscard]] std::size_t position(const DictionaryKey& key, SourceLocation where) const
    {
        const auto found = positions.find(comparable(key));
        if (found == positions.end())
            throw RuntimeFailure(kElementNotFound, "Element not found", where);
        return found->second;
    }

    Entry& entryOf(const DictionaryKey& key)
    {
        const auto [found, added] = positions.emplace(comparable(key), entries.size());
        if (added)
            entries.push_back({key, {}});
        return entries[found->second];
    }

    Int32 lCompareMode = kBinaryCompare;
    std::vector<Entry> entries;
    std::map<DictionaryKey, std::size_t> positions; // by the comparable form of the key
    std::shared_ptr<DictionaryObject> object;
};

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary& other) = default;
Dictionary& Dictionary::operator=(const Dictionary& other) = default;
Dictionary::~Dictionary() = default;

Int32 Dictionary::CompareMode() const
{
    return fields_->lCompareMode;
}

void Dictionary::CompareMode(Int32 mode, SourceLocation where)
{
    if (!fields_->entries.empty() || (mode != kBinaryCompare && mode != kTextCompare))
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
    fields_->lCompareMode = mode;
}

void Dictionary::Add(const DictionaryKey& key, DictionaryItem item, SourceLocation where)
{
    if (!fields_->positions.emplace(fields_->comparable(key), fields_->entries.size()).second)
        throw RuntimeFailure(FailureCode::KeyAlreadyUsed, where);
    fields_->entries.push_back({key, std::move(item)});
}

Boolean Dictionary::Exists(const DictionaryKey& key) const
{
    return fields_->positions.contains(fields_->comparable(key));
}

DictionaryItem Dictionary::Item(const DictionaryKey& key)
{
    return fields_->entryOf(key).item;
}

void Dictionary::Item(const DictionaryKey& key, DictionaryItem item)
{
    fields_->entryOf(key).item = std::move(item);
}

void Dictionary::Key(const DictionaryKey& key, const DictionaryKey& newKey, SourceLocation where)
{
    const std::size_t at = fields_->position(key, where);
    const auto [found, added] = fields_->positions.emplace(fields_->comparable(newKey), at);
    if (!added && found->second != at)
        throw RuntimeFailure(FailureCode::KeyAlreadyUsed, where);
    if (added)
        fields_->positions.erase(fields_->comparable(key));
    fields_->entries[at].key = newKey;
}

std::vector<DictionaryKey> Dictionary::Keys() const
{
    std::vector<DictionaryKey> keys;
    keys.reserve(fields_->entries.size());
    for (const Fields::Entry& entry : fields_->entries)
        keys.push_back(entry.key);
    return keys;
}

std::vector<DictionaryItem> Dictionary::Items() const
{
    std::vector<DictionaryItem> items;
    items.reserve(fields_->entries.size());
    for (const Fields::Entry& entry : fields_->entries)
        items.push_back(entry.item);
    return items;
}

Int32 Dictionary::Count() const
{
    return static_cast<Int32>(fields_->entries.size());
}

void Dictionary::Remove(const DictionaryKey& key, SourceLocation where)
{
    const std::size_t at = fields_->position(key, where);
    fields_->positions.erase(fields_->comparable(key));
    fields_->entries.erase(fields_->entries.begin() + static_cast<std::ptrdiff_t>(at));
    for (auto& [other, otherAt] : fields_->positions) {
        if (otherAt > at)
            --otherAt;
    }
}

void Dictionary::RemoveAll()
{
    fields_->entries.clear();
    fields_->positions.clear();
}

void setDictionaryObjectCreator(DictionaryObjectCreator creator)
{
    objectCreator = creator;
}

Dictionary newDictionary()
{
    Dictionary dictionary;
    if (const DictionaryObjectCreator create = objectCreator)
        dictionary.fields_->object = create();
    return dictionary;
}

std::shared_ptr<DictionaryObject> objectOf(const Dictionary& dictionary)
{
    return dictionary.fields_->object;
}

} // namespace kel
