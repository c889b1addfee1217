// SPDX-License-Identifier: MIT
#include "cli/check/Search.h"

#include "platform/LineSettings.h"
#include "profiles/Catalogue.h"

#include <algorithm>

namespace kel {

namespace {

constexpr Int32 kNoHandshaking = 0;
constexpr Int32 kHardware = 2;

// What a reader may be set to: the speeds of the catalogue first, then others that have been usual.
constexpr Int32 kUsualSpeeds[] = {9600, 19200, 38400};
constexpr Int32 kOtherSpeeds[] = {2400, 1200, 14400, 28800, 56000, 600, 300};

struct Character {
    char parity;
    Int32 dataBits;
};
constexpr Character kCharacters[] = {{'N', 8}, {'E', 7}, {'O', 7}, {'N', 7}, {'E', 8}, {'O', 8}};

std::string settingsText(Int32 speed, Character character, double stopBits)
{
    return std::to_string(speed) + "," + character.parity + "," + std::to_string(character.dataBits) +
           (stopBits == 2 ? ",2" : ",1");
}

class Places {
public:
    void add(Dialect dialect, const std::string& settings, Int32 handshaking = kNoHandshaking)
    {
        const Place place{dialect, settings, handshaking};
        if (std::ranges::find(places_, place) == places_.end())
            places_.push_back(place);
    }

    [[nodiscard]] std::vector<Place> take() { return std::move(places_); }

private:
    std::vector<Place> places_;
};

/// The line that a model of the catalogue starts from; nothing if it has none.
std::string usualLineOf(const CatalogueModel& model)
{
    if (!model.Link.Defaults)
        return {};
    const LineDefaults line = *model.Link.Defaults;
    return settingsText(static_cast<Int32>(line.BaudRate), {line.Parity[0], line.DataBits}, line.StopBits);
}

/// The model itself, with one thing of its line set otherwise, then with several.
void addOwn(Places& places, Dialect dialect, const LineParameters& line)
{
    const Character own{line.parity, line.dataBits};
    const std::string text = settingsText(line.baudRate, own, line.stopBits);
    places.add(dialect, text);
    places.add(dialect, text, kHardware);
    for (const Int32 speed : kUsualSpeeds)
        places.add(dialect, settingsText(speed, own, line.stopBits));
    for (const char parity : {'N', 'E', 'O'})
        places.add(dialect, settingsText(line.baudRate, {parity, line.dataBits}, line.stopBits));
    places.add(dialect, settingsText(line.baudRate, {line.parity, line.dataBits == 8 ? 7 : 8}, line.stopBits));
    for (const Int32 speed : kUsualSpeeds)
        for (const Character character : kCharacters)
            places.add(dialect, settingsText(speed, character, line.stopBits));
    for (const Int32 speed : kOtherSpeeds)
        places.add(dialect, settingsText(speed, own, line.stopBits));
}

} // namespace

std::vector<Place> placesFor(kelReaderType model, const std::string& lineSettings)
{
    Places places;
    addOwn(places, dialectOf(model).dialect, parseLineSettings(lineSettings));
    // The others where they usually are: the line of each model of the catalogue.
    for (const DialectEntry& dialect : dialects())
        for (const CatalogueGroup& group : catalogue())
            for (const CatalogueModel& other : group.Models) {
                const std::string line = usualLineOf(other);
                if (!line.empty() && dialectOf(other.ReaderType).dialect == dialect.dialect)
                    places.add(dialect.dialect, line);
            }
    // And anywhere else. What a reader of another kind could take amiss comes last at each setting.
    for (const Int32 speed : kUsualSpeeds)
        for (const Character character : kCharacters)
            for (const DialectEntry& dialect : dialects())
                places.add(dialect.dialect, settingsText(speed, character, 1));
    return places.take();
}

std::optional<Found> searchReader(CheckRun& run)
{
    const std::vector<Place> places = placesFor(run.model(), run.lineSettings());
    for (std::size_t at = 0; at < places.size(); ++at) {
        const Place& place = places[at];
        const DialectEntry& dialect = entryOf(place.dialect);
        run.person().tell("search " + std::to_string(at + 1) + " of " + std::to_string(places.size()) + ": " +
                          place.settings + " as " + std::string(dialect.name));
        const Answer answer = run.ask("search " + std::to_string(at + 1), {.dialect = place.dialect,
                                                                           .asks = dialect.asks,
                                                                           .settings = place.settings,
                                                                           .handshaking = place.handshaking});
        const bool answers = answer.kind != ReplyKind::Silence && answer.kind != ReplyKind::Other;
        if (answers && !answer.section.errors.any())
            return place;
    }
    return std::nullopt;
}

std::string foundText(const Found& found)
{
    return "something answers at " + found.settings + " as " + std::string(entryOf(found.dialect).name) + " does";
}

std::string foundAdvice(const Found& found, kelReaderType model)
{
    if (dialectOf(model).dialect != found.dialect)
        return "Try --model " + std::to_string(entryOf(found.dialect).model) + ".";
    const LineParameters line = parseLineSettings(found.settings);
    return "Try --set BaudRate=" + std::to_string(line.baudRate) + " --set Parity=" + line.parity +
           " --set DataBits=" + std::to_string(line.dataBits) + ".";
}

Cause foundCause(const Found& found, kelReaderType model, const std::string& lineSettings)
{
    if (dialectOf(model).dialect != found.dialect)
        return Cause::OtherModel;
    const LineParameters wanted = parseLineSettings(lineSettings);
    const LineParameters there = parseLineSettings(found.settings);
    if (wanted.baudRate != there.baudRate)
        return Cause::WrongSpeed;
    if (wanted.dataBits != there.dataBits)
        return Cause::WrongDataBits;
    return wanted.parity != there.parity ? Cause::WrongParity : Cause::None;
}

} // namespace kel
