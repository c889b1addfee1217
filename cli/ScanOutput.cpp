// SPDX-License-Identifier: MIT
#include "cli/ScanOutput.h"

#include "cli/Console.h"
#include "cli/JsonLines.h"
#include "cli/SheetCsv.h"
#include "cli/SheetPage.h"
#include "cli/SheetTable.h"
#include "host/UsageError.h"
#include "types/Path.h"

#include <iostream>

namespace kel {

std::optional<std::vector<host::Field>> wantedFields(bool wanted, const host::Form& form, const std::string& format)
{
    if (!wanted)
        return std::nullopt;
    if (format != "json" && format != "csv")
        throw host::UsageError("--fields goes with --format json and csv only; leave it out for " + format + ".");
    if (form.fields.empty())
        throw host::UsageError("--fields needs names for what is on a sheet: give a --form FILE that has \"fields\".");
    return form.fields;
}

ScanOutput::ScanOutput(const std::string& outFile, const std::string& format, const std::string& title,
                       const PictureForm& form, const std::optional<std::vector<host::Field>>& fields)
{
    if (!outFile.empty())
        output_.emplace(pathOf(outFile));
    else
        output_.emplace();
    const auto write = [this](const std::string& text) {
        progress_.clear();
        output_->write(text);
    };
    const auto tell = [this](const std::string& text) {
        progress_.clear();
        std::cerr << "kelreader: " << text << std::flush;
    };
    if (format == "csv")
        lines_ = std::make_unique<SheetCsv>(write, tell, fields);
    else if (format == "table")
        lines_ = std::make_unique<TableText>(write, tell, terminalWidth());
    else if (format == "html")
        lines_ = std::make_unique<SheetPage>(write, tell, title, form);
    else
        lines_ = std::make_unique<JsonLines>(write, tell, fields);
}

void ScanOutput::addPictures(const std::filesystem::path& folder, const PictureForm& form)
{
    pictures_ = std::make_unique<PictureFolder>(folder, form);
}

std::string ScanOutput::problem() const
{
    if (output_->failed())
        return output_->problem();
    return pictures_ ? pictures_->problem() : std::string();
}

void ScanOutput::sheet(const host::Sheet& event)
{
    lines_->sheet(event);
    if (pictures_)
        pictures_->sheet(event);
    progress_.sheet();
}

void ScanOutput::failure(const host::Failure& event)
{
    lines_->failure(event);
}

void ScanOutput::end(const host::BatchEnd& event)
{
    progress_.clear();
    lines_->end(event);
}

} // namespace kel
