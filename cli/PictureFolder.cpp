// SPDX-License-Identifier: MIT
#include "cli/PictureFolder.h"

#include "cli/UsageError.h"
#include "host/TextOutput.h"
#include "pictures/SheetPicture.h"
#include "store/SheetRecords.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

constexpr int kDigits = 6;

std::filesystem::path madeFolder(std::filesystem::path folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder))
        throw CommandFailure("The folder " + folder.string() + " for the pictures cannot be made: " +
                             (error ? error.message() : "a file has its name") + ".");
    return folder;
}

std::string fileName(const host::Sheet& sheet)
{
    return formatZeros(sheet.number, kDigits) + ".svg";
}

/// A name as a part of a file's name.
std::string partOfName(std::string name)
{
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '/' || c == '.' || static_cast<unsigned char>(c) <= ' '; },
        '_');
    return name;
}

} // namespace

PictureFolder::PictureFolder(std::filesystem::path folder, PictureForm form)
    : folder_(madeFolder(std::move(folder))), form_(std::move(form))
{
}

void PictureFolder::sheet(const host::Sheet& event)
{
    if (!problem_.empty())
        return;
    try {
        host::TextOutput(folder_ / fileName(event)).writeOrFail(sheetPicture(form_, pictureSheet(event)));
    } catch (const CommandFailure& failure) {
        problem_ = failure.what();
    }
}

EntryPictures::EntryPictures(std::filesystem::path folder) : folder_(madeFolder(std::move(folder))) {}

void EntryPictures::sheet(const Entry& entry)
{
    const ReadSheetEntry& read = *entry.sheet();
    const std::string name =
        partOfName(entry.origin.reader) + "-" + partOfName(entry.origin.batch) + "-" + fileName(read.sheet);
    host::TextOutput(folder_ / name).writeOrFail(sheetPicture(pictureForm(read.setup), pictureSheet(read.sheet)));
}

} // namespace kel
