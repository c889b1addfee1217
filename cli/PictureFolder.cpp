#include "cli/PictureFolder.h"

#include "cli/SheetRecords.h"
#include "cli/UsageError.h"
#include "host/TextOutput.h"
#include "pictures/SheetPicture.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr int kDigits = 6;

} // namespace

PictureFolder::PictureFolder(std::filesystem::path folder, PictureForm form)
    : folder_(std::move(folder)), form_(std::move(form))
{
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    if (!std::filesystem::is_directory(folder_))
        throw CommandFailure("The folder " + folder_.string() + " for the pictures cannot be made: " +
                             (error ? error.message() : "a file has its name") + ".");
}

void PictureFolder::sheet(const host::Sheet& event)
{
    if (!problem_.empty())
        return;
    try {
        host::TextOutput(folder_ / (formatZeros(event.number, kDigits) + ".svg"))
            .writeOrFail(sheetPicture(form_, pictureSheet(event)));
    } catch (const CommandFailure& failure) {
        problem_ = failure.what();
    }
}

} // namespace kel
