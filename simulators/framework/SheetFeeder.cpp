// SPDX-License-Identifier: MIT
#include "simulators/framework/SheetFeeder.h"

#include "formats/Json.h"
#include "types/LineText.h"

#include <limits>
#include <random>
#include <stdexcept>

namespace kel {

namespace {

/// Whole numbers from the standard's own generator, whose output is laid down; its distributions are not.
class Draw {
public:
    Draw(std::uint64_t seed, std::uint64_t place) : generator_(mixed(mixed(seed) + place)) {}

    /// From `lowest` to `highest`, both included.
    [[nodiscard]] Int32 number(Int32 lowest, Int32 highest)
    {
        const auto span = static_cast<std::uint64_t>(std::int64_t{highest} - lowest + 1);
        return static_cast<Int32>(lowest + static_cast<std::int64_t>(generator_() % span));
    }

private:
    /// Spreads neighbouring seeds far apart (the finish of splitmix64).
    [[nodiscard]] static std::uint64_t mixed(std::uint64_t value)
    {
        value += 0x9E3779B97F4A7C15U;
        value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
        value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
        return value ^ (value >> 31);
    }

    std::mt19937_64 generator_;
};

MarkRows randomMarks(Draw& draw, const SheetShape& shape, Int32 rows, Int32 columns)
{
    MarkRows marks;
    for (Int32 row = 0; row < rows; ++row) {
        std::vector<Int16>& cells = marks.emplace_back();
        cells.reserve(static_cast<std::size_t>(std::max(columns, 0)));
        for (Int32 column = 0; column < columns; ++column) {
            const bool marked = draw.number(1, 100) <= shape.densityPercent;
            const Int32 value = draw.number(shape.lowestMark, shape.highestMark);
            cells.push_back(marked ? static_cast<Int16>(value) : Int16{0});
        }
    }
    return marks;
}

std::string randomDigits(Draw& draw, Int32 length)
{
    std::string digits;
    for (Int32 count = 0; count < length; ++count)
        digits += static_cast<char>('0' + draw.number(0, 9));
    return digits;
}

MarkRows marksFrom(const Json& value, const JsonPlace& place)
{
    MarkRows marks;
    readJsonArray(value, place, "row", [&](const Json& row, const JsonPlace& rowPlace) {
        std::vector<Int16>& cells = marks.emplace_back();
        readJsonArray(row, rowPlace, "column", [&](const Json& cell, const JsonPlace& here) {
            cells.push_back(
                readJsonNumber(cell, here, std::numeric_limits<Int16>::min(), std::numeric_limits<Int16>::max()));
        });
    });
    return marks;
}

/// Texts as they are, numbers and truth values as JSON writes them.
std::string fieldFrom(const Json& value, const JsonPlace& place)
{
    if (value.is_string())
        return readJsonLineText(value, place);
    if (!value.is_number() && !value.is_boolean())
        place.refuse("has to be a text or a number, not " + value.dump());
    return value.dump();
}

SimulatedSheet sheetFrom(const Json& value, const JsonPlace& place)
{
    SimulatedSheet sheet;
    const auto side = [&](MarkRows& rows, const char* name) {
        return [&rows, here = place.part(name)](const Json& marks, const JsonPlace&) { rows = marksFrom(marks, here); };
    };
    const auto barcodes = [&](const Json& texts, const JsonPlace&) {
        readJsonArray(texts, place.part("barcodes"), [&](const Json& text, const JsonPlace&) {
            const std::string number = std::to_string(sheet.barcodes.size() + 1);
            sheet.barcodes.push_back(readJsonLineText(text, place.part("barcode " + number)));
        });
    };
    const auto fields = [&](const Json& object, const JsonPlace&) {
        if (!object.is_object())
            place.part("fields").refuse("has to be an object");
        for (const auto& [name, field] : object.items())
            sheet.fields[name] = fieldFrom(field, place.part("field \"" + name + "\""));
    };
    readJsonObject(value, place,
                   {{"side1", side(sheet.side1, "side1")},
                    {"side2", side(sheet.side2, "side2")},
                    {"barcodes", barcodes},
                    {"fields", fields}});
    return sheet;
}

} // namespace

SimulatedSheet randomSheet(const SheetShape& shape, std::uint64_t seed, std::uint64_t place)
{
    Draw draw(seed, place);
    SimulatedSheet sheet;
    sheet.side1 = randomMarks(draw, shape, shape.side1Rows, shape.side1Columns);
    sheet.side2 = randomMarks(draw, shape, shape.side2Rows, shape.side2Columns);
    for (Int32 count = 0; count < shape.barcodes; ++count)
        sheet.barcodes.push_back(randomDigits(draw, shape.barcodeLength));
    for (const auto& [name, length] : shape.digitFields)
        sheet.fields[name] = randomDigits(draw, length);
    return sheet;
}

SheetFeeder SheetFeeder::of(const std::vector<SimulatedSheet>& sheets)
{
    SheetFeeder feeder;
    feeder.pile_.assign(sheets.begin(), sheets.end());
    return feeder;
}

SheetFeeder SheetFeeder::fromJson(std::string_view text)
{
    SheetFeeder feeder;
    readJsonArray(parseJson(text), {}, "sheet",
                  [&](const Json& sheet, const JsonPlace& place) { feeder.put(sheetFrom(sheet, place)); });
    return feeder;
}

SheetFeeder SheetFeeder::fromFile(const std::filesystem::path& file)
{
    const std::string text = readWholeFile(file, {"sheet file", 32});
    try {
        return fromJson(text);
    } catch (const JsonRefusal& refusal) {
        throw std::runtime_error(file.string() + ": " + refusal.what());
    }
}

std::uint64_t SheetFeeder::remaining() const
{
    std::uint64_t count = 0;
    for (const auto& part : pile_) {
        const auto* const random = std::get_if<RandomSheets>(&part);
        count += random ? random->seeded.count - random->taken : 1;
    }
    return count;
}

SimulatedSheet SheetFeeder::take()
{
    auto* const random = std::get_if<RandomSheets>(&pile_.front());
    if (!random) {
        SimulatedSheet sheet = std::move(std::get<SimulatedSheet>(pile_.front()));
        pile_.pop_front();
        return sheet;
    }
    SimulatedSheet sheet = randomSheet(random->shape, random->seeded.seed, random->seeded.copies ? 0 : random->taken);
    if (++random->taken == random->seeded.count)
        pile_.pop_front();
    return sheet;
}

void SheetFeeder::put(const SheetShape& shape, const SeededSheets& seeded)
{
    if (seeded.count > 0)
        pile_.emplace_back(RandomSheets{shape, seeded});
}

std::string toJson(const std::vector<SimulatedSheet>& sheets)
{
    Json array = Json::array();
    for (const SimulatedSheet& sheet : sheets) {
        Json object = Json::object();
        object["side1"] = sheet.side1;
        object["side2"] = sheet.side2;
        object["barcodes"] = Json::array();
        for (const std::string& barcode : sheet.barcodes)
            object["barcodes"].push_back(textOfLine(barcode));
        for (const auto& [name, field] : sheet.fields)
            object["fields"][name] = textOfLine(field);
        array.push_back(std::move(object));
    }
    return array.dump();
}

} // namespace kel
