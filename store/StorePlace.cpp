// SPDX-License-Identifier: MIT
#include "store/StorePlace.h"

#include "store/StoreProblem.h"

#include <system_error>

namespace kel {

std::filesystem::path placeOf(std::filesystem::path store)
{
    constexpr int kMostLinks = 40;
    std::error_code error;
    for (int links = 0; links < kMostLinks && std::filesystem::is_symlink(store, error); ++links)
        store = store.parent_path() / std::filesystem::read_symlink(store, error);
    return store;
}

const std::filesystem::path& existingStore(const std::filesystem::path& store)
{
    if (!std::filesystem::exists(store))
        throw StoreProblem("There is no store " + store.string() + "; name one that a scan or a station writes.");
    return store;
}

} // namespace kel
