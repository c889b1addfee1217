// SPDX-License-Identifier: MIT
#include "station/JsonFaults.h"

#include "formats/JsonValue.h"
#include "formats/NearestNames.h"

#include <algorithm>

namespace kel {

void JsonFaults::add(const JsonPlace& place, const std::string& complaint)
{
    faults_.push_back(validUtf8((place.path.empty() ? "the file" : place.path) + " " + complaint + "."));
}

void JsonFaults::attempt(const JsonPlace& place, const std::function<void()>& read)
{
    const auto refused = [this](const JsonRefusal& refusal) {
        const std::string text = refusal.what();
        constexpr std::string_view kWhole = "the text";
        faults_.push_back(validUtf8((refusal.isOfWhole() ? "the file" + text.substr(kWhole.size()) : text) + "."));
    };
    try {
        read();
    } catch (const UnknownJsonKey& unknown) {
        refused(unknown.endingWith(nearestListed(nearestNames(unknown.name(), unknown.known()))));
    } catch (const JsonRefusal& refusal) {
        refused(refusal);
    } catch (const std::runtime_error& error) {
        faults_.push_back(validUtf8((place.path.empty() ? "" : place.path + ": ") + error.what()));
    }
}

void JsonFaults::readObject(const Json& value, const JsonPlace& place, const JsonKeyReaders& readers)
{
    if (!value.is_object()) {
        attempt(place, [&] { readJsonObject(value, place, readers); });
        return;
    }
    for (const auto& [name, member] : value.items()) {
        const JsonPlace here = place.key(name);
        // One key at a time, so that the next one is read whatever is wrong with this.
        attempt(here, [&, &member = member, &name = name] {
            Json one = Json::object();
            one[name] = member;
            readJsonObject(one, place, readers);
        });
    }
}

} // namespace kel
