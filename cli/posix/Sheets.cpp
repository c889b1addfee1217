// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/EntryOutput.h"
#include "cli/InterruptWatch.h"
#include "cli/Notice.h"
#include "cli/PictureFolder.h"
#include "cli/UsageError.h"
#include "host/TextOutput.h"
#include "platform/posix/EventCall.h"
#include "store/OldSheets.h"
#include "store/SheetRecords.h"
#include "store/StoreWatch.h"
#include "store/StoredSheets.h"

namespace kel {

namespace {

struct SheetsArguments {
    std::string storeFile;
    std::string reader;
    std::string batch;
    std::string since;
    std::string before;
    std::string format;
    std::string pictureFolder;
    bool follow = false;
    bool forget = false;
    bool force = false;
};

std::string timeNamed(const char* option, const std::string& text)
{
    if (text.empty())
        return {};
    if (const auto time = storeTimeOf(text))
        return *time;
    throw host::UsageError(
        std::string(option) + " has '" + text +
        "', which is not a time; write 2024-01-31 or \"2024-01-31 12:00\", with a Z after it for UTC.");
}

int forget(const SheetsArguments& arguments)
{
    if (arguments.before.empty())
        throw host::UsageError("--forget needs --before T; it removes older sheets and reports for good.");
    const Forgotten forgotten = forgetOldSheets(arguments.storeFile, timeNamed("--before", arguments.before),
                                                arguments.force ? Forget::All : Forget::SentAlone);
    notice(std::to_string(forgotten.sheets) + (forgotten.sheets == 1 ? " sheet" : " sheets") + " forgotten.");
    if (forgotten.kept > 0)
        notice(std::to_string(forgotten.kept) +
               (forgotten.kept == 1 ? " sheet or report stays" : " sheets and reports stay") +
               ": the stream does not have them yet. Let the station send them first, or use --force.");
    return kDoneStatus;
}

/// Where the sheets of a store go.
class StoreOutput {
public:
    explicit StoreOutput(const SheetsArguments& arguments)
        : lines_(entryOutput(arguments.format, [this](const std::string& text) { output_.writeOrFail(text); }))
    {
        if (!arguments.pictureFolder.empty())
            pictures_ = std::make_unique<EntryPictures>(arguments.pictureFolder);
        lines_->begin();
    }

    void entry(const Entry& entry)
    {
        lines_->entry(entry);
        if (pictures_ && entry.sheet())
            pictures_->sheet(entry);
    }

private:
    host::TextOutput output_;
    std::unique_ptr<EntryOutput> lines_;
    std::unique_ptr<EntryPictures> pictures_;
};

/// Whether there is a store; a file without contents is about to become one.
bool isMade(const std::string& store)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(store, error);
    return !error && size > 0;
}

int show(const SheetsArguments& arguments)
{
    if (!arguments.before.empty())
        throw host::UsageError("--before goes with --forget.");
    const StoreFilter filter{.reader = arguments.reader,
                             .batch = arguments.batch,
                             .since = timeNamed("--since", arguments.since),
                             .failures = arguments.format == "json"};
    std::optional<StoredSheets> store(arguments.storeFile);
    StoreOutput output(arguments);
    EventCall interrupted;
    const InterruptWatch interrupt([&] { interrupted.call(); });
    int damaged = 0;
    const auto read = [&](std::int64_t after) {
        const auto take = [&](const Entry& entry) {
            output.entry(entry);
            return !InterruptNote::came();
        };
        return store->read(filter, after, take, [&](std::int64_t, const std::string& sentence) {
            notice(sentence);
            ++damaged;
        });
    };
    if (!arguments.follow) {
        read(0);
    } else {
        const StoreWatch watch(arguments.storeFile);
        std::int64_t last = 0;
        do {
            const bool isLeft = store && store->hasMoved(); // and what it holds is read to the end
            if (store)
                last = read(last);
            if (isLeft)
                store.reset();
            if (!store && isMade(arguments.storeFile)) {
                store.emplace(arguments.storeFile);
                last = read(0);
            }
        } while (!InterruptNote::came() && watch.wait(interrupted.handle()));
    }
    if (InterruptNote::came())
        return kInterruptedStatus;
    if (damaged == 0)
        return kDoneStatus;
    throw CommandFailure(std::to_string(damaged) + (damaged == 1 ? " row" : " rows") +
                         " could not be read; 'sqlite3 FILE .recover' may save more.");
}

int run(const SheetsArguments& arguments)
{
    return arguments.forget ? forget(arguments) : show(arguments);
}

} // namespace

void addSheetsCommand(Commands& commands)
{
    const auto arguments = std::make_shared<SheetsArguments>();
    CLI::App& command =
        commands.add("sheets", "Shows the sheets that a store holds", [arguments] { return run(*arguments); });
    command.add_option("store", arguments->storeFile, "Store that a scan or a station writes")
        ->required()
        ->type_name("FILE");
    command.add_option("--reader", arguments->reader, "Shows the sheets of one reader; by default those of all")
        ->type_name("NAME");
    command.add_option("--batch", arguments->batch, "Shows the sheets of one batch; by default those of all")
        ->type_name("NAME");
    command
        .add_option(
            "--since", arguments->since,
            "Shows the sheets from this time on, such as 2024-01-31 or \"2024-01-31 12:00\"; with a Z after it in UTC")
        ->type_name("TIME");
    command.add_flag("--follow", arguments->follow, "Also shows new sheets as they come, until Ctrl-C");
    addFormat(command, arguments->format, {"json", "csv", "table"});
    command.add_option("--pictures", arguments->pictureFolder, "Saves a picture of each sheet in a folder, as SVG")
        ->type_name("FOLDER");
    CLI::Option* forget = command.add_flag("--forget", arguments->forget, "Removes sheets and reports for good");
    command.add_option("--before", arguments->before, "With --forget: removes what is older than this time")
        ->type_name("TIME");
    command.add_flag("--force", arguments->force, "With --forget: also removes what the stream does not have yet")
        ->needs(forget);
    for (const char* shows : {"--follow", "--reader", "--batch", "--since", "--pictures"})
        forget->excludes(shows);
    command.footer(
        "json: one line per sheet or report, as a scan writes it, with station, reader, batch, time and id. csv: "
        "one row per sheet, with its marks. table: one row per sheet, easy to read.\n"
        "Exit status: 0 done, 1 the store, or a row of it, cannot be read, 2 wrong usage, 130 interrupted.");
}

} // namespace kel
