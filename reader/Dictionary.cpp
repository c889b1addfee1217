#include "reader/Dictionary.h"

#include "types/Text.h"

namespace kel {

namespace {

constexpr Int32 kElementNotFound = 32811;

} // namespace

std::string itemText(const DictionaryItem& item)
{
    if (const auto* text = std::get_if<std::string>(&item))
        return *text;
    if (const auto* number = std::get_if<Int32>(&item))
        return CStr(*number);
    return {};
}

void Dictionary::CompareMode(Int32 mode, SourceLocation where)
{
    if (!entries_.empty() || (mode != kBinaryCompare && mode != kTextCompare))
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
    lCompareMode_ = mode;
}

void Dictionary::Add(const DictionaryKey& key, DictionaryItem item, SourceLocation where)
{
    if (!positions_.emplace(comparable(key), entries_.size()).second)
        throw RuntimeFailure(FailureCode::KeyAlreadyUsed, where);
    entries_.push_back({key, std::move(item)});
}

Boolean Dictionary::Exists(const DictionaryKey& key) const
{
    return positions_.contains(comparable(key));
}

DictionaryItem Dictionary::Item(const DictionaryKey& key)
{
    return entryOf(key).item;
}

void Dictionary::Item(const DictionaryKey& key, DictionaryItem item)
{
    entryOf(key).item = std::move(item);
}

void Dictionary::Key(const DictionaryKey& key, const DictionaryKey& newKey, SourceLocation where)
{
    const std::size_t at = position(key, where);
    const auto [found, added] = positions_.emplace(comparable(newKey), at);
    if (!added && found->second != at)
        throw RuntimeFailure(FailureCode::KeyAlreadyUsed, where);
    if (added)
        positions_.erase(comparable(key));
    entries_[at].key = newKey;
}

std::vector<DictionaryKey> Dictionary::Keys() const
{
    std::vector<DictionaryKey> keys;
    keys.reserve(entries_.size());
    for (const Entry& entry : entries_)
        keys.push_back(entry.key);
    return keys;
}

std::vector<DictionaryItem> Dictionary::Items() const
{
    std::vector<DictionaryItem> items;
    items.reserve(entries_.size());
    for (const Entry& entry : entries_)
        items.push_back(entry.item);
    return items;
}

void Dictionary::Remove(const DictionaryKey& key, SourceLocation where)
{
    const std::size_t at = position(key, where);
    positions_.erase(comparable(key));
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(at));
    for (auto& [other, otherAt] : positions_) {
        if (otherAt > at)
            --otherAt;
    }
}

void Dictionary::RemoveAll()
{
    entries_.clear();
    positions_.clear();
}

DictionaryKey Dictionary::comparable(const DictionaryKey& key) const
{
    const auto* text = std::get_if<std::string>(&key);
    return text && lCompareMode_ == kTextCompare ? DictionaryKey(lowerCase(*text)) : key;
}

std::size_t Dictionary::position(const DictionaryKey& key, SourceLocation where) const
{
    const auto found = positions_.find(comparable(key));
    if (found == positions_.end())
        throw RuntimeFailure(kElementNotFound, "Element not found", where);
    return found->second;
}

Dictionary::Entry& Dictionary::entryOf(const DictionaryKey& key)
{
    const auto [found, added] = positions_.emplace(comparable(key), entries_.size());
    if (added)
        entries_.push_back({key, {}});
    return entries_[found->second];
}

} // namespace kel
