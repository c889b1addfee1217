// SPDX-License-Identifier: MIT
#include "host/JsonFile.h"

#include "formats/JsonValue.h"
#include "formats/NearestNames.h"
#include "host/UsageError.h"

#include <algorithm>

namespace kel::host {

std::string readGivenFile(const std::filesystem::path& file, const FileKind& kind)
{
    try {
        return readWholeFile(file, kind);
    } catch (const std::runtime_error& failure) {
        throw UsageError(std::string(failure.what()) + ".");
    }
}

void refuseFile(const std::string& fileName, const JsonRefusal& refusal)
{
    if (const auto* unknown = dynamic_cast<const UnknownJsonKey*>(&refusal)) {
        std::vector<std::string> known = unknown->known();
        std::ranges::sort(known);
        refuseFile(fileName, unknown->endingWith(nearestListed(nearestNames(unknown->name(), known))));
    }
    if (dynamic_cast<const NotJson*>(&refusal))
        throw UsageError(validUtf8(fileName + " " + refusal.complaint() + "."));
    const std::string place = refusal.isOfWhole() ? "the file " + refusal.complaint() : refusal.what();
    throw UsageError(validUtf8(fileName + ": " + place + "."));
}

} // namespace kel::host
