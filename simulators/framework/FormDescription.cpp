#include "simulators/framework/FormDescription.h"

#include "simulators/framework/Json.h"

#include <limits>
#include <stdexcept>

namespace kel {

using namespace json;

namespace {

template <class Number>
void takeNumber(const Json& object, const char* member, const std::string& place, Number& target)
{
    if (object.contains(member))
        target =
            static_cast<Number>(wholeNumber(object[member], place + ", " + member, std::numeric_limits<Number>::min(),
                                            std::numeric_limits<Number>::max()));
}

void takePages(const Json& form, const char* member, std::vector<Int16>& pages)
{
    if (!form.contains(member))
        return;
    demandArray(form[member], member);
    for (const Json& value : form[member])
        pages.push_back(
            static_cast<Int16>(wholeNumber(value, std::string(member) + ", page " + std::to_string(pages.size() + 1),
                                           std::numeric_limits<Int16>::min(), std::numeric_limits<Int16>::max())));
}

FormWindow windowFrom(const Json& value, const std::string& place)
{
    demandObject(value, place,
                 {"StartRow", "NumRows", "RowGap", "StartCol", "NumCols", "ColGap", "Page", "Orientation"});
    FormWindow window;
    takeNumber(value, "StartRow", place, window.StartRow);
    takeNumber(value, "NumRows", place, window.NumRows);
    takeNumber(value, "RowGap", place, window.RowGap);
    takeNumber(value, "StartCol", place, window.StartCol);
    takeNumber(value, "NumCols", place, window.NumCols);
    takeNumber(value, "ColGap", place, window.ColGap);
    takeNumber(value, "Page", place, window.Page);
    takeNumber(value, "Orientation", place, window.Orientation);
    return window;
}

FormBarcode barcodeFrom(const Json& value, const std::string& place)
{
    demandObject(value, place, {"Page", "Distance", "Length", "Symbology", "Orientation"});
    FormBarcode barcode;
    takeNumber(value, "Page", place, barcode.Page);
    takeNumber(value, "Distance", place, barcode.Distance);
    takeNumber(value, "Length", place, barcode.Length);
    takeNumber(value, "Symbology", place, barcode.Symbology);
    takeNumber(value, "Orientation", place, barcode.Orientation);
    return barcode;
}

} // namespace

FormDescription formFromJson(std::string_view text)
{
    const Json value = parseJson(text);
    demandObject(value, "form",
                 {"recognitionMode", "side1Rows", "side1Cols", "side2Rows", "side2Cols", "windows", "barcodes"});
    FormDescription form;
    if (value.contains("recognitionMode")) {
        const std::string mode = textOf(value["recognitionMode"], "recognitionMode");
        if (mode != "page" && mode != "window")
            refuseJson("recognitionMode", "\"" + mode + "\" is neither page nor window");
        form.windowMode = mode == "window";
    }
    takePages(value, "side1Rows", form.side1Rows);
    takePages(value, "side1Cols", form.side1Cols);
    takePages(value, "side2Rows", form.side2Rows);
    takePages(value, "side2Cols", form.side2Cols);
    if (value.contains("windows")) {
        demandArray(value["windows"], "windows");
        for (const Json& window : value["windows"])
            form.windows.push_back(windowFrom(window, "window " + std::to_string(form.windows.size() + 1)));
    }
    if (value.contains("barcodes")) {
        demandArray(value["barcodes"], "barcodes");
        for (const Json& barcode : value["barcodes"])
            form.barcodes.push_back(barcodeFrom(barcode, "barcode " + std::to_string(form.barcodes.size() + 1)));
    }
    return form;
}

FormDescription formFromFile(const std::filesystem::path& file)
{
    const std::string text = readWholeFile(file);
    try {
        return formFromJson(text);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}

} // namespace kel
