// SPDX-License-Identifier: MIT
#include "formats/NearestNames.h"

#include "types/Text.h"

#include <algorithm>
#include <numeric>

namespace kel {

namespace {

// How many letters a name may be farther away than the nearest one to be worth mentioning.
constexpr std::size_t kClearlyFarther = 2;

/// Where the words of a name begin, and its end: "Scantron Scanmark 2500", "NumRows".
std::vector<std::size_t> wordBounds(std::string_view name)
{
    const auto isCapital = [](char character) { return character >= 'A' && character <= 'Z'; };
    std::vector<std::size_t> bounds = {0};
    for (std::size_t i = 1; i < name.size(); ++i) {
        if (name[i - 1] == ' ' || (isCapital(name[i]) && !isCapital(name[i - 1])))
            bounds.push_back(i);
    }
    bounds.push_back(name.size());
    return bounds;
}

/// The smallest distance from `wanted` to the name, or to any run of its words: a person who types "Scanmrk 2500"
/// leaves the maker away.
std::size_t distanceToName(std::string_view wanted, std::string_view name)
{
    const std::vector<std::size_t> bounds = wordBounds(name);
    std::size_t smallest = editDistance(wanted, name);
    for (std::size_t first = 0; first < bounds.size(); ++first) {
        for (std::size_t last = first + 1; last < bounds.size(); ++last) {
            std::string_view words = name.substr(bounds[first], bounds[last] - bounds[first]);
            if (words.ends_with(' '))
                words.remove_suffix(1);
            smallest = std::min(smallest, editDistance(wanted, words));
        }
    }
    return smallest;
}

} // namespace

std::size_t editDistance(std::string_view a, std::string_view b)
{
    const std::string from = lowerCase(a);
    const std::string to = lowerCase(b);
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row[to.size()];
}

std::vector<std::string> nearestNames(std::string_view wanted, const std::vector<std::string>& names, std::size_t count)
{
    struct Candidate {
        std::size_t distance;
        std::size_t wholeDistance;
        const std::string* name;
    };
    std::vector<Candidate> candidates;
    candidates.reserve(names.size());
    for (const std::string& name : names)
        candidates.push_back({distanceToName(wanted, name), editDistance(wanted, name), &name});
    std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.wholeDistance < b.wholeDistance;
    });

    std::vector<std::string> nearest;
    for (const Candidate& candidate : candidates) {
        if (nearest.size() == count || candidate.distance > candidates.front().distance + kClearlyFarther)
            break;
        // After the nearest, a name that has no letter in common is no help.
        if (!nearest.empty() && candidate.distance >= wanted.size())
            break;
        nearest.push_back(*candidate.name);
    }
    return nearest;
}

std::string nearestListed(const std::vector<std::string>& nearest)
{
    return (nearest.size() == 1 ? "the nearest is " : "the nearest are ") + listed(nearest, "and");
}

std::string listed(const std::vector<std::string>& names, std::string_view lastLink)
{
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0)
            text += i + 1 == names.size() ? " " + std::string(lastLink) + " " : std::string(", ");
        text += names[i];
    }
    return text;
}

} // namespace kel
