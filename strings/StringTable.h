// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The texts of a language at their indexes, from 0 to an upper bound; an index that was given no text has an empty
/// one. The texts lie in pages that are made when the first text of a page is stored: the bounds come from a file, and
/// a damaged one must not cost more memory than it has texts.
class StringTable {
public:
    /// A table without bounds: every index lies outside.
    StringTable() = default;

    /// A table of the indexes 0 to `upper`; failure 9 if `upper` is below 0.
    explicit StringTable(Int32 upper)
    {
        if (upper < 0)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
        size_ = static_cast<std::size_t>(upper) + 1;
        pages_.resize((size_ + kPage - 1) / kPage);
    }

    /// Whether it has bounds.
    [[nodiscard]] bool isDimensioned() const noexcept { return size_ > 0; }

    /// Gives an index its text; failure 9 if it lies outside the table.
    void store(Int32 index, std::string text)
    {
        const std::size_t at = position(index);
        if (at >= size_)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
        auto& page = pages_[at / kPage];
        if (!page)
            page = std::make_unique<Page>();
        (*page)[at % kPage] = std::move(text);
    }

    /// The text of an index, or `outside` if the index lies outside the table.
    [[nodiscard]] std::string textOr(Int32 index, std::string_view outside) const
    {
        const std::size_t at = position(index);
        if (at >= size_)
            return std::string(outside);
        const auto& page = pages_[at / kPage];
        return page ? (*page)[at % kPage] : std::string();
    }

private:
    static constexpr std::size_t kPage = 1024;
    using Page = std::array<std::string, kPage>;

    /// A negative index becomes a position after every table.
    static constexpr std::size_t position(Int32 index) noexcept
    {
        return index < 0 ? static_cast<std::size_t>(-1) : static_cast<std::size_t>(index);
    }

    std::size_t size_ = 0;
    std::vector<std::unique_ptr<Page>> pages_;
};

} // namespace kel
