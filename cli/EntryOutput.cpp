// SPDX-License-Identifier: MIT
#include "cli/EntryOutput.h"

#include "cli/JsonLines.h"
#include "formats/Columns.h"
#include "store/SheetRows.h"
#include "types/LineText.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

class JsonEntries final : public EntryOutput {
public:
    explicit JsonEntries(Write write) : write_(std::move(write)) {}
    void entry(const Entry& entry) override { write_(jsonText(jsonEntry(entry)) + "\n"); }

private:
    Write write_;
};

class CsvEntries final : public EntryOutput {
public:
    explicit CsvEntries(Write write) : write_(std::move(write)) {}

    void begin() override { write_(csvEntryHeading()); }
    void entry(const Entry& entry) override { write_(csvEntry(entry)); }

private:
    Write write_;
};

constexpr std::size_t kTimeWidth = 26;
constexpr std::size_t kReaderWidth = 14;
constexpr std::size_t kBatchWidth = 22;
constexpr std::size_t kNumberWidth = 8;

/// A row a sheet: who wants its marks to look at has pictures of them.
class EntryTable final : public EntryOutput {
public:
    explicit EntryTable(Write write) : write_(std::move(write)) {}

    void begin() override { row("TIME", "READER", "BATCH", "SHEET", "MARKS", "BARCODES"); }

    void entry(const Entry& entry) override
    {
        const ReadSheetEntry* const read = entry.sheet();
        if (!read)
            return;
        const host::Sheet& sheet = read->sheet;
        std::string last;
        for (const std::string& barcode : sheet.barcodes.elements())
            last += barcode.empty() ? "" : "\"" + printable(textOfLine(barcode)) + "\" ";
        last += sheet.rejected ? "REJECTED " : "";
        last += sheet.printed ? "printed" : "";
        row(entry.time, entry.origin.reader, entry.origin.batch, CStr(sheet.number),
            CStr(static_cast<Int32>(sheet.marks(1).size() + sheet.marks(2).size())), last);
    }

private:
    /// What a barcode holds must not move the cursor.
    static std::string printable(std::string text)
    {
        std::replace_if(
            text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
        return text;
    }

    void row(const std::string& time, const std::string& reader, const std::string& batch, const std::string& number,
             const std::string& marks, const std::string& last)
    {
        std::string line = padded(time, kTimeWidth) + padded(reader, kReaderWidth) + " " + padded(batch, kBatchWidth) +
                           " " + padded(number, kNumberWidth) + padded(marks, kNumberWidth) + last;
        line.erase(line.find_last_not_of(' ') + 1);
        write_(line + "\n");
    }

    Write write_;
};

} // namespace

Json jsonEntry(const Entry& entry)
{
    Json line = entry.sheet() ? jsonSheet(entry.sheet()->sheet) : jsonFailure(entry.report()->failure);
    if (entry.report())
        line["afterSheet"] = entry.report()->afterSheet;
    line["station"] = validUtf8(entry.origin.station);
    line["reader"] = validUtf8(entry.origin.reader);
    line["batch"] = validUtf8(entry.origin.batch);
    line["time"] = entry.time;
    line["id"] = entry.id;
    return line;
}

std::unique_ptr<EntryOutput> entryOutput(const std::string& format, EntryOutput::Write write)
{
    if (format == "csv")
        return std::make_unique<CsvEntries>(std::move(write));
    if (format == "table")
        return std::make_unique<EntryTable>(std::move(write));
    return std::make_unique<JsonEntries>(std::move(write));
}

} // namespace kel
