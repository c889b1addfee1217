// SPDX-License-Identifier: MIT
#include "host/Form.h"

#include "formats/JsonValue.h"
#include "host/FieldFile.h"
#include "host/JsonFile.h"

#include <limits>

namespace kel::host {

namespace {

using Limits = std::numeric_limits<Int16>;
using LongLimits = std::numeric_limits<Int32>;

// More of each than any reader accepts.
constexpr std::size_t kMostFormPages = 1000;
constexpr std::size_t kMostWindows = 1000;
constexpr std::size_t kMostBarcodes = 1000;

Int16 readSize(const Json& value, const JsonPlace& place)
{
    return readJsonNumber(value, place, 0, Limits::max());
}

JsonReader sizes(std::optional<std::vector<Int16>>& target)
{
    return [&target](const Json& value, const JsonPlace& place) {
        target.emplace();
        readBoundedJsonArray(value, place, kMostFormPages, "pages",
                             [&](const Json& size, const JsonPlace& here) { target->push_back(readSize(size, here)); });
    };
}

template <class Record>
JsonReader field(Record& record, void (Record::*set)(Int16))
{
    return [&record, set](const Json& value, const JsonPlace& place) {
        (record.*set)(readJsonNumber(value, place, Limits::min(), Limits::max()));
    };
}

template <class Record>
JsonReader sizeField(Record& record, void (Record::*set)(Int16))
{
    return [&record, set](const Json& value, const JsonPlace& place) { (record.*set)(readSize(value, place)); };
}

template <class Record, class Enum>
JsonReader enumField(Record& record, void (Record::*set)(Enum))
{
    return [&record, set](const Json& value, const JsonPlace& place) {
        (record.*set)(static_cast<Enum>(readJsonLongNumber(value, place, LongLimits::min(), LongLimits::max())));
    };
}

clsKELReaderWindow readWindow(const Json& object, const JsonPlace& place)
{
    using W = clsKELReaderWindow;
    W window;
    readJsonObject(object, place,
                   {{"StartRow", field(window, &W::StartRow)},
                    {"NumRows", sizeField(window, &W::NumRows)},
                    {"RowGap", field(window, &W::RowGap)},
                    {"StartCol", field(window, &W::StartCol)},
                    {"NumCols", sizeField(window, &W::NumCols)},
                    {"ColGap", field(window, &W::ColGap)},
                    {"Page", field(window, &W::Page)},
                    {"Orientation", field(window, &W::Orientation)},
                    {"NumItems", sizeField(window, &W::NumItems)},
                    {"NumChoices", sizeField(window, &W::NumChoices)}});
    return window;
}

clsKELReaderBarcode readBarcode(const Json& object, const JsonPlace& place)
{
    using B = clsKELReaderBarcode;
    B barcode;
    readJsonObject(object, place,
                   {{"Page", field(barcode, &B::Page)},
                    {"Distance", field(barcode, &B::Distance)},
                    {"Length", sizeField(barcode, &B::Length)},
                    {"Symbology", enumField(barcode, &B::Symbology)},
                    {"Orientation", enumField(barcode, &B::Orientation)}});
    return barcode;
}

kelRecognitionType readRecognitionMode(const Json& value, const JsonPlace& place)
{
    const std::string mode = readJsonText(value, place);
    if (mode == "page")
        return kelRecognitionTypePage;
    if (mode == "window")
        return kelRecognitionTypeWindow;
    place.refuse("has to be \"page\" or \"window\", not " + jsonText(jsonValue(mode)));
}

Form formOf(const Json& root)
{
    Form form;
    std::optional<std::pair<const Json*, JsonPlace>> fields; // they need what may stand after them
    readJsonObject(
        root, {},
        {{"recognitionMode",
          [&](const Json& value, const JsonPlace& place) { form.recognitionMode = readRecognitionMode(value, place); }},
         {"side1Rows", sizes(form.side1Rows)},
         {"side1Cols", sizes(form.side1Cols)},
         {"side2Rows", sizes(form.side2Rows)},
         {"side2Cols", sizes(form.side2Cols)},
         {"windows",
          [&](const Json& value, const JsonPlace& place) {
              readBoundedJsonArray(
                  value, place, kMostWindows, "windows",
                  [&](const Json& window, const JsonPlace& here) { form.windows.push_back(readWindow(window, here)); });
          }},
         {"barcodes",
          [&](const Json& value, const JsonPlace& place) {
              readBoundedJsonArray(value, place, kMostBarcodes, "barcode zones",
                                   [&](const Json& barcode, const JsonPlace& here) {
                                       form.barcodes.push_back(readBarcode(barcode, here));
                                   });
          }},
         {"fields", [&](const Json& value, const JsonPlace& place) { fields.emplace(&value, place); }}});
    if (fields)
        form.fields = readFields(*fields->first, fields->second, form);
    return form;
}

PageArray pages(const std::vector<Int16>& sizes)
{
    return PageArray::of(1, sizes);
}

} // namespace

Form parseForm(std::string_view text, const std::string& fileName)
{
    return readingFile(fileName, [&] {
        const Json root = parseJson(text);
        Form form = formOf(root);
        form.source = jsonText(root);
        return form;
    });
}

Form readFormFile(const std::filesystem::path& file)
{
    return parseForm(readGivenFile(file, kFormFile), file.string());
}

std::string sizesText(const Form& form)
{
    Json object = Json::object();
    const std::pair<const char*, const std::optional<std::vector<Int16>>*> sizes[] = {{"side1Rows", &form.side1Rows},
                                                                                      {"side1Cols", &form.side1Cols},
                                                                                      {"side2Rows", &form.side2Rows},
                                                                                      {"side2Cols", &form.side2Cols}};
    for (const auto& [name, pages] : sizes) {
        if (*pages)
            object[name] = **pages;
    }
    return jsonText(object);
}

void applySizes(const Form& form, clsKELReader& reader)
{
    if (form.side1Rows)
        reader.Side1Rows(pages(*form.side1Rows));
    if (form.side1Cols)
        reader.Side1Cols(pages(*form.side1Cols));
    if (form.side2Rows)
        reader.Side2Rows(pages(*form.side2Rows));
    if (form.side2Cols)
        reader.Side2Cols(pages(*form.side2Cols));
}

void applyForm(const Form& form, clsKELReader& reader)
{
    reader.RecognitionMode(form.recognitionMode);
    applySizes(form, reader);
    for (const clsKELReaderWindow& window : form.windows)
        reader.Windows()->Add(makeReference<clsKELReaderWindow>(window));
    for (const clsKELReaderBarcode& barcode : form.barcodes)
        reader.Barcodes()->Add(makeReference<clsKELReaderBarcode>(barcode));
}

} // namespace kel::host
