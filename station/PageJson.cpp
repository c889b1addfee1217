// SPDX-License-Identifier: MIT
#include "station/PageJson.h"

#include "formats/JsonValue.h"
#include "store/SheetJson.h"

namespace kel {

namespace {

Json markCount(const host::Sheet& sheet, int side)
{
    const MarkArray& marks = side == 1 ? sheet.side1 : sheet.side2;
    return marks.isDimensioned() ? static_cast<Int32>(sheet.marks(side).size()) : -1;
}

} // namespace

Json pageRow(const Entry& entry)
{
    const host::Sheet& sheet = entry.sheet()->sheet;
    const Json marks = {markCount(sheet, 1), markCount(sheet, 2)};
    return {{"id", entry.id},
            {"reader", validUtf8(entry.origin.reader)},
            {"batch", validUtf8(entry.origin.batch)},
            {"sheet", sheet.number},
            {"time", entry.time},
            {"marks", marks},
            {"timing", {sheet.side1TimingMarks, sheet.side2TimingMarks}},
            {"barcodes", jsonTexts(sheet.barcodes.elements())},
            {"record", sheet.record ? jsonRecord(*sheet.record) : Json(nullptr)},
            {"blank", marks[0] <= 0 && marks[1] <= 0 && !sheet.record},
            {"rejected", sheet.rejected},
            {"printed", jsonTexts(sheet.printedLines)}};
}

Json pageRows(const FoundSheets& found)
{
    Json rows = Json::array();
    for (const Entry& entry : found.sheets)
        rows.push_back(pageRow(entry));
    return {{"sheets", std::move(rows)}, {"next", found.next}};
}

Json pageBatches(const std::vector<StoredBatch>& batches)
{
    Json rows = Json::array();
    for (const StoredBatch& batch : batches)
        rows.push_back(
            {{"reader", validUtf8(batch.reader)}, {"batch", validUtf8(batch.name)}, {"sheets", batch.sheets}});
    return rows;
}

} // namespace kel
