// SPDX-License-Identifier: MIT
#include "profiles/Catalogue.h"

#include "profiles/ModelLine.h"
#include "types/ModelTable.h"

#include <array>
#include <string_view>
#include <utility>

namespace kel {

namespace {

constexpr UserMay Unseen = UserMay::SeeNothing;
constexpr UserMay Locked = UserMay::See;
constexpr UserMay Free = UserMay::Change;

struct Scale {
    std::string_view name;
    ModelThresholds thresholds;
};

// clang-format off

// Thresholds, each on its maker's scale of darkness
constexpr std::array kScales = std::to_array<Scale>({
    //            cut-off  discrimination     threshold       from   to
    {"Fixed",    {  0,      0,   Locked,      1, Locked,      0,   0}},
    {"AllFixed", {  1,      1,   Locked,      1, Locked,      0,   0}},
    {"Link",     { 20,     10,   Free,       15, Free,        0,  31}},
    {"ACF100",   {  4,      9,   Unseen,      8, Free,        0,   9}},
    {"EZData",   {  4,      9,   Unseen,      4, Free,        0,   9}},
    {"PDI",      {250,      5,   Free,      240, Free,      192, 254}}, // raw grey levels
    {"8000",     { 65,     10,   Free,       35, Free,        0,  99}},
    {"Scantron", { 10,      3,   Free,        7, Free,        0,  15}},
    {"Sekonic",  { 10,      2,   Free,        5, Free,        0,  15}},
    {"SR410",    {  6,      3,   Free,        1, Free,        1,   8}},
    {"SR430",    {  6,      3,   Free,        1, Free,        1,  16}},
});
static_assert(modelWithUnknown(&ModelRow::scale, kScales) == 0,
              "the model of this number names a scale that kScales lacks");

constexpr CatalogueModel kNone = {kelReaderTypeNone, {}, " -   -   -   -   -   -   -   no  no", {}, 0};

// clang-format on

consteval CatalogueModel catalogueModel(const ModelRow& row)
{
    return {static_cast<kelReaderType>(row.number), ModelLine::link(row.line), row.options,
            entryNamed(kScales, row.scale)->thresholds, row.columns};
}

template <std::size_t... place>
consteval auto catalogueModels(std::index_sequence<place...>)
{
    return std::array{catalogueModel(kModels[place])...};
}

constexpr std::array kCatalogueModels = catalogueModels(std::make_index_sequence<kModels.size()>());

/// The models of a maker, which stand together.
constexpr CatalogueGroup group(kelProfileType maker)
{
    std::size_t first = 0;
    while (first < kModels.size() && kModels[first].maker != maker)
        ++first;
    std::size_t end = first;
    while (end < kModels.size() && kModels[end].maker == maker)
        ++end;
    return {maker, std::span(kCatalogueModels).subspan(first, end - first)};
}

constexpr std::array kCatalogue = {group(kelProfileTypeAP), group(kelProfileTypeCT), group(kelProfileTypePDI),
                                   group(kelProfileTypeScantron), group(kelProfileTypeSekonic)};

/// The number of the first model that stands apart from those of its maker, 0 if none does.
consteval std::int32_t modelApart()
{
    for (const ModelRow& row : kModels) {
        int found = 0;
        for (const CatalogueGroup& maker : kCatalogue)
            for (const CatalogueModel& model : maker.Models)
                found += model.ReaderType == row.number ? 1 : 0;
        if (found != 1)
            return row.number;
    }
    return 0;
}
static_assert(modelApart() == 0, "the row of the model of this number stands apart from those of its maker");

} // namespace

std::span<const CatalogueGroup> catalogue()
{
    return kCatalogue;
}

const CatalogueModel& noReader()
{
    return kNone;
}

} // namespace kel
