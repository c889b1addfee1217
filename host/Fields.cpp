// SPDX-License-Identifier: MIT
#include "host/Fields.h"

#include "types/LineText.h"

namespace kel::host {

namespace {

bool contains(const MarkArray& marks, const FieldCell& cell)
{
    return cell.row >= 1 && cell.row <= marks.rows() && cell.column >= 1 && cell.column <= marks.columns();
}

std::string joined(const Sheet& sheet)
{
    std::string all;
    for (const std::string& text : sheet.texts()) {
        if (!text.empty())
            all += (all.empty() ? "" : " ") + textOfLine(text);
    }
    return all;
}

} // namespace

FieldValue valueOf(const Field& field, const Sheet& sheet)
{
    const MarkArray& marks = field.side == 2 ? sheet.side2 : sheet.side1;
    std::string labels;
    std::size_t count = 0;
    for (std::size_t i = 0; i < field.cells.size(); ++i) {
        const FieldCell& cell = field.cells[i];
        if (!contains(marks, cell))
            return {};
        const Int16 mark = marks(cell.row, cell.column);
        if (field.labels.empty())
            return Int32{mark};
        if (mark == 0)
            continue;
        ++count;
        labels += field.labels[i];
    }
    if (count == 0)
        return field.blank;
    return count == 1 || field.doubleMarks == DoubleMarks::All ? labels : std::string(kDoubleMark);
}

std::vector<std::string> columnsOf(const std::vector<Field>& fields)
{
    std::vector<std::string> columns{"sheet", "barcodes", "rejected", "printed"};
    for (const Field& field : fields)
        columns.push_back(field.name);
    return columns;
}

std::vector<FieldValue> rowOf(const std::vector<Field>& fields, const Sheet& sheet)
{
    std::vector<FieldValue> row{sheet.number, joined(sheet), sheet.rejected, sheet.printed};
    for (const Field& field : fields)
        row.push_back(valueOf(field, sheet));
    return row;
}

} // namespace kel::host
