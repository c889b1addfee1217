// SPDX-License-Identifier: MIT
#include "cli/SheetCsv.h"

#include "host/Failure.h"
#include "store/SheetRows.h"
#include "types/Text.h"

namespace kel {

namespace {

struct TextOfValue {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(Int32 value) const { return CStr(value); }
    std::string operator()(const std::string& value) const { return value; }
};

} // namespace

void SheetCsv::writeHeading()
{
    if (!headingWritten_)
        write_(csvLine(fields_ ? host::columnsOf(*fields_) : csvHeading()));
    headingWritten_ = true;
}

void SheetCsv::sheet(const host::Sheet& event)
{
    writeHeading();
    if (!fields_) {
        write_(csvLine(csvFields(event)));
        return;
    }
    std::vector<std::string> row;
    for (const host::FieldValue& value : host::rowOf(*fields_, event))
        row.push_back(std::visit(TextOfValue{}, value));
    write_(csvLine(row));
}

void SheetCsv::failure(const host::Failure& event)
{
    tell_(host::failureSentence(event) + "\n");
}

void SheetCsv::end(const host::BatchEnd& event)
{
    static_cast<void>(event);
    writeHeading();
}

} // namespace kel
