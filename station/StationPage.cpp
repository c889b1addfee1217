// SPDX-License-Identifier: MIT
#include "station/StationPage.h"

#include "formats/JsonValue.h"
#include "host/UsageError.h"
#include "pictures/SheetPicture.h"
#include "station/PageFiles.h"
#include "station/PageJson.h"
#include "station/StateText.h"
#include "store/SheetRecords.h"
#include "store/SheetRows.h"
#include "store/StoreProblem.h"
#include "store/StoredSheets.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>

namespace kel {

namespace {

constexpr int kBadRequest = 400;
constexpr int kNotFound = 404;
constexpr int kNotNow = 503;
constexpr std::size_t kRowsAtOnce = 60;
constexpr std::size_t kMostBatches = 200;

constexpr const char* kPagePolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; base-uri 'none'; "
    "form-action 'none'; frame-ancestors 'none'";
constexpr const char* kPicturePolicy = "default-src 'none'; style-src 'unsafe-inline'; frame-ancestors 'none'; sandbox";

constexpr const char* kJson = "application/json";

WebAnswer file(std::string_view text, const char* type)
{
    return {.type = type, .policy = kPagePolicy, .body = std::string(text)};
}

WebAnswer nothingThere()
{
    return {.status = kNotFound, .body = "There is nothing with that name.\n"};
}

std::optional<std::int64_t> numberOf(const std::string& text)
{
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end || number < 0)
        return std::nullopt;
    return number;
}

std::string timeOf(const WebRequest& request)
{
    const std::string since = request.value("since");
    if (since.empty())
        return {};
    if (const auto time = storeTimeOf(since))
        return *time;
    throw host::UsageError("\"" + since + "\" is not a time; write 2024-01-31 or 2024-01-31 12:00.");
}

/// A name as a part of a file's name.
std::string fileNamePart(std::string name)
{
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char c) { return !(c < 0x80 && (std::isalnum(c) != 0 || c == '-' || c == '_')); }, '_');
    return name;
}

} // namespace

StationPage::StationPage(std::function<StationState()> station, std::filesystem::path store)
    : station_(std::move(station)), store_(std::move(store)), feed_([this] { return stateText(); }, store_)
{
}

StationState StationPage::state() const
{
    StationState state = station_();
    state.watchers = feed_.watchers();
    return state;
}

std::string StationPage::stateText() const
{
    return jsonText(jsonState(state()));
}

WebAnswer StationPage::answer(const WebRequest& request)
{
    try {
        return answerTo(request);
    } catch (const host::UsageError& error) {
        return {.status = kBadRequest, .body = std::string(error.what()) + "\n"};
    } catch (const StoreProblem& problem) {
        return {.status = kNotNow, .body = std::string(problem.what()) + "\n"};
    }
}

WebAnswer StationPage::answerTo(const WebRequest& request)
{
    const std::string& path = request.path;
    if (path == "/")
        return file(kStationHtml, "text/html; charset=utf-8");
    if (path == "/page.css")
        return file(kStationCss, "text/css; charset=utf-8");
    if (path == "/page.js")
        return file(kStationScript, "text/javascript; charset=utf-8");
    if (path == "/icon.svg")
        return file(kStationIcon, "image/svg+xml");
    if (path == "/state")
        return {.type = kJson, .body = stateText() + "\n"};
    if (path == "/events")
        return events();
    if (path == "/sheets")
        return sheets(request);
    if (path == "/batches")
        return {.type = kJson, .body = pageBatches(StoredSheets(store_).batches(kMostBatches)).dump() + "\n"};
    if (path == "/batch.csv")
        return csv(request);
    constexpr std::string_view kPictures = "/pictures/";
    if (path.starts_with(kPictures))
        return picture(path.substr(kPictures.size()));
    return nothingThere();
}

WebAnswer StationPage::events()
{
    auto watch = feed_.watch();
    if (!watch)
        return {.status = kNotNow,
                .headers = {{"Retry-After", "10"}},
                .body = "Too many pages watch this station; close one of them.\n"};
    return {.type = "text/event-stream", .stream = std::move(watch)};
}

WebAnswer StationPage::sheets(const WebRequest& request) const
{
    const SheetSearch search{.reader = request.value("reader"),
                             .batch = request.value("batch"),
                             .since = timeOf(request),
                             .barcode = request.value("barcode"),
                             .rejected = request.value("rejected") == "1",
                             .blank = request.value("blank") == "1"};
    const std::string before = request.value("before");
    const auto from = before.empty() ? 0 : numberOf(before);
    if (!from)
        throw host::UsageError("\"" + before + "\" is not the number of a sheet.");
    return {.type = kJson, .body = pageRows(StoredSheets(store_).find(search, *from, kRowsAtOnce)).dump() + "\n"};
}

WebAnswer StationPage::picture(const std::string& name) const
{
    constexpr std::string_view kEnd = ".svg";
    const auto id = name.ends_with(kEnd) ? numberOf(name.substr(0, name.size() - kEnd.size())) : std::nullopt;
    const std::optional<Entry> entry = id ? StoredSheets(store_).sheet(*id) : std::nullopt;
    if (!entry)
        return nothingThere();
    const ReadSheetEntry& read = *entry->sheet();
    return {.type = "image/svg+xml",
            .policy = kPicturePolicy,
            .body = sheetPicture(pictureForm(read.setup), pictureSheet(read.sheet))};
}

/// A batch may be larger than the memory: its rows go out as they are read.
WebAnswer StationPage::csv(const WebRequest& request) const
{
    const StoreFilter filter{.reader = request.value("reader"),
                             .batch = request.value("batch"),
                             .since = timeOf(request),
                             .failures = false};
    const auto store = std::make_shared<StoredSheets>(store_);
    const std::string name = fileNamePart(filter.reader + "-" + filter.batch) + ".csv";
    return {.type = "text/csv; charset=utf-8",
            .headers = {{"Content-Disposition", "attachment; filename=\"" + name + "\""}},
            .stream = [store, filter](WebClient& client) {
                if (client.send(csvEntryHeading()))
                    store->read(filter, 0, [&](const Entry& entry) { return client.send(csvEntry(entry)); });
            }};
}

} // namespace kel
