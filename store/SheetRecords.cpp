// SPDX-License-Identifier: MIT
#include "store/SheetRecords.h"

#include "pictures/MarkScale.h"
#include "store/SheetJson.h"
#include "types/LineText.h"
#include "types/ModelTable.h"

#include <algorithm>

namespace kel {

namespace {

Int32 largest(const std::optional<std::vector<Int16>>& sizes)
{
    return sizes && !sizes->empty() ? *std::max_element(sizes->begin(), sizes->end()) : Int16{0};
}

/// Readers that send each window row by row, whatever its orientation.
bool readsRowByRow(kelReaderType model)
{
    return Wire("SekonicLarge").isOf(model) || Wire("SekonicLargeDuplex").isOf(model);
}

} // namespace

PictureForm pictureForm(const host::Form& form)
{
    PictureForm picture;
    picture.side1Rows = largest(form.side1Rows);
    picture.side1Columns = largest(form.side1Cols);
    picture.side2Rows = largest(form.side2Rows);
    picture.side2Columns = largest(form.side2Cols);
    picture.windows = form.windows;
    picture.barcodes = form.barcodes;
    return picture;
}

PictureForm pictureForm(const host::Form& form, kelReaderType model, Int16 threshold)
{
    PictureForm picture = pictureForm(form);
    picture.scale = markScale(model, threshold);
    picture.readsByOrientation = !readsRowByRow(model);
    return picture;
}

PictureForm pictureForm(const Setup& setup)
{
    const host::Form form = setup.form.empty() ? host::Form() : host::parseForm(setup.form, "the form of the sheet");
    return pictureForm(form, setup.model, setup.threshold);
}

PictureSheet pictureSheet(const host::Sheet& sheet)
{
    PictureSheet picture;
    picture.sheet = sheet.number;
    picture.side1 = sheet.side1;
    picture.side2 = sheet.side2;
    picture.side1TimingMarks = sheet.side1TimingMarks;
    picture.side2TimingMarks = sheet.side2TimingMarks;
    for (const std::string& barcode : sheet.barcodes.elements())
        picture.barcodes.push_back(textOfLine(barcode));
    picture.rejected = sheet.rejected;
    picture.printed = sheet.printed;
    for (const std::string& line : sheet.printedLines)
        picture.printedLines.push_back(textOfLine(line));
    if (sheet.record) {
        const Json record = jsonRecord(*sheet.record);
        for (const auto& [name, value] : record.items())
            picture.record.emplace_back(name, value.is_string() ? value.get<std::string>() : value.dump());
    }
    return picture;
}

} // namespace kel
