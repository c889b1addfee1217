#include "simulators/framework/SheetFeeder.h"

#include "simulators/framework/Json.h"

#include <limits>
#include <random>
#include <stdexcept>

namespace kel {

using namespace json;

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

MarkRows marksFrom(const Json& value, const std::string& place)
{
    demandArray(value, place);
    MarkRows marks;
    for (const Json& row : value) {
        const std::string rowPlace = place + ", row " + std::to_string(marks.size() + 1);
        demandArray(row, rowPlace);
        std::vector<Int16>& cells = marks.emplace_back();
        for (const Json& cell : row)
            cells.push_back(
                static_cast<Int16>(wholeNumber(cell, rowPlace + ", column " + std::to_string(cells.size() + 1),
                                               std::numeric_limits<Int16>::min(), std::numeric_limits<Int16>::max())));
    }
    return marks;
}

/// Texts as they are, numbers and truth values as JSON writes them.
std::string fieldFrom(const Json& value, const std::string& place)
{
    if (value.is_string())
        return value.get<std::string>();
    if (!value.is_number() && !value.is_boolean())
        refuseJson(place, value.dump() + " is neither a text nor a number");
    return value.dump();
}

SimulatedSheet sheetFrom(const Json& value, const std::string& place)
{
    demandObject(value, place, {"side1", "side2", "barcodes", "fields"});
    SimulatedSheet sheet;
    if (value.contains("side1"))
        sheet.side1 = marksFrom(value["side1"], place + ", side1");
    if (value.contains("side2"))
        sheet.side2 = marksFrom(value["side2"], place + ", side2");
    if (value.contains("barcodes")) {
        demandArray(value["barcodes"], place + ", barcodes");
        for (const Json& barcode : value["barcodes"])
            sheet.barcodes.push_back(textOf(barcode, place + ", barcode " + std::to_string(sheet.barcodes.size() + 1)));
    }
    if (value.contains("fields")) {
        if (!value["fields"].is_object())
            refuseJson(place + ", fields", "is no object");
        for (const auto& [name, field] : value["fields"].items())
            sheet.fields[name] = fieldFrom(field, place + ", field \"" + name + "\"");
    }
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
    feeder.sheets_.assign(sheets.begin(), sheets.end());
    return feeder;
}

SheetFeeder SheetFeeder::random(const SheetShape& shape, std::uint64_t seed, std::uint64_t count)
{
    SheetFeeder feeder;
    for (std::uint64_t place = 0; place < count; ++place)
        feeder.put(randomSheet(shape, seed, place));
    return feeder;
}

SheetFeeder SheetFeeder::fromJson(std::string_view text)
{
    const Json sheets = parseJson(text);
    if (!sheets.is_array())
        throw std::runtime_error("sheets are an array of objects");
    SheetFeeder feeder;
    for (const Json& sheet : sheets)
        feeder.put(sheetFrom(sheet, "sheet " + std::to_string(feeder.remaining() + 1)));
    return feeder;
}

SheetFeeder SheetFeeder::fromFile(const std::filesystem::path& file)
{
    const std::string text = readWholeFile(file);
    try {
        return fromJson(text);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}

SimulatedSheet SheetFeeder::take()
{
    SimulatedSheet sheet = std::move(sheets_.front());
    sheets_.pop_front();
    return sheet;
}

std::string toJson(const std::vector<SimulatedSheet>& sheets)
{
    Json array = Json::array();
    for (const SimulatedSheet& sheet : sheets) {
        Json object = Json::object();
        object["side1"] = sheet.side1;
        object["side2"] = sheet.side2;
        object["barcodes"] = sheet.barcodes;
        if (!sheet.fields.empty())
            object["fields"] = sheet.fields;
        array.push_back(std::move(object));
    }
    return array.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace kel
