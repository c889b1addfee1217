// SPDX-License-Identifier: MIT
#include "store/EntryTexts.h"

#include "formats/JsonValue.h"
#include "store/SheetJson.h"

#include <utility>

namespace kel {

namespace {

std::string textOrNothing(const Json& value)
{
    return value.is_null() ? std::string() : jsonText(value);
}

MarkArray sideIn(const std::string& text)
{
    return text.empty() ? MarkArray() : sideOf(parseJson(text));
}

ReadSheetEntry sheetIn(SheetTexts texts)
{
    ReadSheetEntry read;
    read.setup = std::move(texts.setup);
    host::Sheet& sheet = read.sheet;
    sheet.number = texts.number;
    sheet.side1 = sideIn(texts.side1);
    sheet.side2 = sideIn(texts.side2);
    sheet.side1TimingMarks = texts.side1TimingMarks;
    sheet.side2TimingMarks = texts.side2TimingMarks;
    sheet.barcodes = TextArray::of(1, lineTextsOf(parseJson(texts.barcodes)));
    if (!texts.record.empty())
        sheet.record = recordOf(parseJson(texts.record));
    sheet.rejected = texts.rejected;
    sheet.printed = texts.printed;
    sheet.printedLines = lineTextsOf(parseJson(texts.printedLines));
    return read;
}

} // namespace

SheetTexts textsOf(const ReadSheetEntry& read)
{
    const host::Sheet& sheet = read.sheet;
    return {.setup = read.setup,
            .number = sheet.number,
            .side1 = textOrNothing(jsonSide(sheet.side1)),
            .side2 = textOrNothing(jsonSide(sheet.side2)),
            .side1TimingMarks = sheet.side1TimingMarks,
            .side2TimingMarks = sheet.side2TimingMarks,
            .barcodes = jsonText(jsonTexts(sheet.barcodes.elements())),
            .record = sheet.record ? jsonText(jsonRecord(*sheet.record)) : std::string(),
            .rejected = sheet.rejected,
            .printed = sheet.printed,
            .printedLines = jsonText(jsonTexts(sheet.printedLines))};
}

EntryTexts textsOf(const Entry& entry)
{
    EntryTexts texts{.id = entry.id, .identity = entry.identity, .origin = entry.origin, .time = entry.time};
    if (entry.sheet())
        texts.what = textsOf(*entry.sheet());
    else
        texts.what = *entry.report();
    return texts;
}

Entry entryOf(EntryTexts texts)
{
    Entry entry{.id = texts.id,
                .identity = std::move(texts.identity),
                .origin = std::move(texts.origin),
                .time = std::move(texts.time)};
    if (texts.sheet())
        entry.what = sheetIn(std::get<SheetTexts>(std::move(texts.what)));
    else
        entry.what = std::get<ReportEntry>(std::move(texts.what));
    return entry;
}

void demandJson(const EntryTexts& texts)
{
    const SheetTexts* const sheet = texts.sheet();
    if (!sheet)
        return;
    for (const std::string* text :
         {&sheet->side1, &sheet->side2, &sheet->barcodes, &sheet->record, &sheet->printedLines}) {
        const bool mayBeMissing = text != &sheet->barcodes && text != &sheet->printedLines;
        if (!(mayBeMissing && text->empty()) && !Json::accept(*text))
            static_cast<void>(parseJson(*text)); // says why not
    }
}

} // namespace kel
