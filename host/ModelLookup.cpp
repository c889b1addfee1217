// SPDX-License-Identifier: MIT
#include "host/ModelLookup.h"

#include "formats/NearestNames.h"
#include "host/EnumeratorNames.h"
#include "host/UsageError.h"
#include "profiles/ReaderModels.h"
#include "profiles/clsKELReaderProfiles.h"
#include "types/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <functional>
#include <optional>

namespace kel::host {

namespace {

/// Letters and digits alone, in lower case: "ACF-100", "acf 100" and "ACF100" are one.
std::string plain(std::string_view text)
{
    std::string result;
    for (const char character : lowerCase(text)) {
        if ((character >= 'a' && character <= 'z') || (character >= '0' && character <= '9'))
            result += character;
    }
    return result;
}

struct ModelNames {
    kelReaderType eReaderType;
    std::string displayName;
    std::vector<std::string> plainNames; // display name, enumerator, enumerator without that of the enumeration
};

std::vector<ModelNames> modelNames()
{
    std::vector<ModelNames> models;
    for (const Enumerator& member : readerTypes().members) {
        const auto eReaderType = static_cast<kelReaderType>(member.value);
        std::string name = ReturnReaderName(eReaderType);
        std::vector<std::string> plainNames = {plain(name), plain(member.name), plain(readerTypes().shortName(member))};
        models.push_back({eReaderType, std::move(name), std::move(plainNames)});
    }
    return models;
}

std::optional<kelReaderType> modelNumber(std::string_view text)
{
    Int32 number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 0 ||
        number >= static_cast<Int32>(readerTypes().members.size()))
        return std::nullopt;
    return static_cast<kelReaderType>(number);
}

using NameTest = std::function<bool(const std::string& name)>;

std::vector<const ModelNames*> modelsWith(const std::vector<ModelNames>& models, const NameTest& fits)
{
    std::vector<const ModelNames*> found;
    for (const ModelNames& model : models) {
        if (std::any_of(model.plainNames.begin(), model.plainNames.end(), fits))
            found.push_back(&model);
    }
    return found;
}

std::string nameWithNumber(const ModelNames& model)
{
    return model.displayName + " (" + CStr(model.eReaderType) + ")";
}

[[noreturn]] void refuseAmbiguous(std::string_view text, const std::vector<const ModelNames*>& found)
{
    std::vector<std::string> names;
    for (const ModelNames* model : found)
        names.push_back(nameWithNumber(*model));
    throw UsageError("'" + std::string(text) + "' fits several models: " + listed(names, "and") + ".");
}

[[noreturn]] void refuseUnknown(std::string_view text, const std::vector<ModelNames>& models)
{
    std::vector<std::string> names;
    for (const ModelNames& model : models) {
        if (model.eReaderType != kelReaderTypeNone)
            names.push_back(model.displayName);
    }
    std::vector<std::string> nearest;
    const std::string wanted = plain(text);
    for (const std::string& name : nearestNames(text, names)) {
        if (plain(name).find_first_of(wanted) == std::string::npos)
            continue; // not a letter in common
        const auto model = std::find_if(models.begin(), models.end(),
                                        [&](const ModelNames& candidate) { return candidate.displayName == name; });
        nearest.push_back(nameWithNumber(*model));
    }
    throw UsageError("There is no model '" + std::string(text) + "'" +
                     (nearest.empty() ? "" : "; " + nearestListed(nearest)) + " ('kelreader models' lists all).");
}

struct Maker {
    kelProfileType eMaker;
    std::string_view shortName;
    std::array<std::string_view, 2> otherNames;
};

constexpr Maker kMakers[] = {
    {kelProfileTypeAP, "apperson", {"ap"}},
    {kelProfileTypeCT, "chatsworth", {"chatsworthdata", "ct"}},
    {kelProfileTypePDI, "pdi", {"peripheraldynamics", "peripheraldynamicsinc"}},
    {kelProfileTypeScantron, "scantron", {"ncs"}},
    {kelProfileTypeSekonic, "sekonic", {"scanningsystems"}},
};
static_assert(std::ssize(kMakers) == std::popcount(static_cast<std::uint32_t>(kelProfileTypeAll)),
              "each maker of kelProfileType needs one row in kMakers");

} // namespace

kelReaderType modelNamed(std::string_view text)
{
    if (const auto number = modelNumber(text))
        return *number;

    const std::vector<ModelNames> models = modelNames();
    const std::string wanted = plain(text);
    // What is almost a number is not a part of a name.
    if (wanted.empty() || text.starts_with('-') || text.starts_with('+') || text.starts_with(' '))
        refuseUnknown(text, models);
    const NameTest tests[] = {
        [&](const std::string& name) { return name == wanted; },
        [&](const std::string& name) { return name.starts_with(wanted); },
        [&](const std::string& name) { return name.find(wanted) != std::string::npos; },
    };
    for (const NameTest& fits : tests) {
        const auto found = modelsWith(models, fits);
        if (found.size() == 1)
            return found.front()->eReaderType;
        if (!found.empty())
            refuseAmbiguous(text, found);
    }
    refuseUnknown(text, models);
}

bool isUsbModel(kelReaderType eReaderType)
{
    const Reference<clsKELReaderProfile> profile = clsKELReaderProfiles().Item(CStr(eReaderType));
    return profile && profile->InterfaceType() == kelReaderInterfaceTypeUSB;
}

kelProfileType makerNamed(std::string_view text)
{
    const std::string wanted = plain(text);
    std::vector<std::string> known;
    for (const Maker& maker : kMakers) {
        if (wanted == maker.shortName || (!wanted.empty() && std::ranges::count(maker.otherNames, wanted) != 0))
            return maker.eMaker;
        known.emplace_back(maker.shortName);
    }
    throw UsageError("There is no maker '" + std::string(text) + "'; the makers are " + listed(known, "and") + ".");
}

} // namespace kel::host
