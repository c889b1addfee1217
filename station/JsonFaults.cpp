// SPDX-License-Identifier: MIT
#include "station/JsonFaults.h"

#include "formats/JsonValue.h"
#include "formats/NearestNames.h"

#include <algorithm>
#include <set>
#include <utility>

namespace kel {

void JsonFaults::add(const JsonPlace& place, const std::string& complaint)
{
    keep((place.path.empty() ? "the file" : place.path) + " " + complaint + ".");
}

/// What several parts have in common, such as a module that is missing, is told once.
void JsonFaults::keep(const std::string& sentence)
{
    std::string fault = validUtf8(sentence);
    if (std::find(faults_.begin(), faults_.end(), fault) == faults_.end())
        faults_.push_back(std::move(fault));
}

void JsonFaults::attempt(const JsonPlace& place, const std::function<void()>& read)
{
    const auto refused = [this](const JsonRefusal& refusal) {
        const std::string text = refusal.what();
        constexpr std::string_view kWhole = "the text";
        keep((refusal.isOfWhole() ? "the file" + text.substr(kWhole.size()) : text) + ".");
    };
    try {
        read();
    } catch (const UnknownJsonKey& unknown) {
        refused(unknown.endingWith(nearestListed(nearestNames(unknown.name(), unknown.known()))));
    } catch (const JsonRefusal& refusal) {
        refused(refusal);
    } catch (const std::runtime_error& error) {
        keep((place.path.empty() ? "" : place.path + ": ") + error.what());
    }
}

namespace {

/// How deep the parser is in a text, and where.
class Nesting {
public:
    void enter(bool isArray) { levels_.push_back({.isArray = isArray}); }

    void leave()
    {
        levels_.pop_back();
        passElement();
    }

    void passElement()
    {
        if (!levels_.empty() && levels_.back().isArray)
            ++levels_.back().index;
    }

    /// Whether the object has it for the first time.
    bool take(const std::string& key)
    {
        levels_.back().key = key;
        return levels_.back().keys.insert(key).second;
    }

    [[nodiscard]] JsonPlace place() const
    {
        JsonPlace place;
        for (const Level& level : levels_)
            place = level.isArray ? place.element(level.index) : place.key(level.key);
        return place;
    }

private:
    struct Level {
        bool isArray = false;
        std::size_t index = 0;
        std::string key{};
        std::set<std::string> keys{};
    };

    std::vector<Level> levels_;
};

} // namespace

void JsonFaults::findRepeatedKeys(std::string_view text)
{
    using Event = Json::parse_event_t;
    Nesting nesting;
    [[maybe_unused]] const Json whole = Json::parse(text, [&](int, Event event, Json& parsed) {
        switch (event) {
        case Event::object_start:
        case Event::array_start: nesting.enter(event == Event::array_start); break;
        case Event::object_end:
        case Event::array_end: nesting.leave(); break;
        case Event::value: nesting.passElement(); break;
        case Event::key:
            if (!nesting.take(parsed.get<std::string>()))
                add(nesting.place(), "is there twice; remove one of them");
            break;
        }
        return true;
    });
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
