// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/library/OmrDevice.h"

#include "simulators/framework/LatestEntries.h"
#include "simulators/framework/SpoiltSheet.h"

#include <algorithm>
#include <limits>

namespace kel {

namespace {

constexpr Int32 kFeederEmpty = 0x40110000;
constexpr Int32 kReadAllTheSame[] = {0x40120003, 0x41120003, 0x42120003};

constexpr Int32 kColumnsWanted = 48;

bool isReadAllTheSame(Int32 code)
{
    return std::ranges::find(kReadAllTheSame, code) != std::end(kReadAllTheSame);
}

} // namespace

OmrDevice::OmrDevice(OmrSimulationState state)
    : state_(std::move(state)), given_(SheetFeeder::of(state_.sheets)), paperFaults_(state_.paperFaults)
{
    state_.sheets.clear();
    if (state_.randomSheets)
        random_.put(state_.randomSheets->shape, state_.randomSheets->seeded);
    if (!state_.logFile.empty())
        logFile_.open(state_.logFile, std::ios::app);
}

OmrSimulationReport OmrDevice::report() const
{
    const std::uint64_t remaining = given_.remaining() + random_.remaining();
    return {.calls = calls_,
            .faults = faults_,
            .log = log_,
            .open = open_,
            .remaining = static_cast<Int32>(std::min<std::uint64_t>(remaining, std::numeric_limits<Int32>::max())),
            .printStrings = printStrings_};
}

std::optional<Int32> OmrDevice::begin(const std::string& function, std::initializer_list<Int32> arguments,
                                      const std::string& text)
{
    std::string line = function;
    for (const Int32 argument : arguments)
        line += ' ' + std::to_string(argument);
    addKeepingLatest(calls_, line + text);
    if (lastErrorDue_ && function != "OMR_GetLastError")
        fault(function + " where the last error is to be asked for");
    lastErrorDue_ = false;

    const Int32 call = ++callCounts_[function];
    for (const OmrSimulationState::Refusal& refusal : state_.refusals) {
        if (refusal.function == function && refusal.call == call)
            return fail(refusal.code, refusal.result);
    }
    return std::nullopt;
}

void OmrDevice::writeLine(const std::string& line)
{
    if (logFile_.is_open())
        logFile_ << line << '\n' << std::flush;
}

void OmrDevice::fault(const std::string& what)
{
    addKeepingFirst(faults_, what);
    writeLine("fault: " + what);
}

bool OmrDevice::demand(bool condition, const std::string& what)
{
    if (!condition)
        fault(what);
    return condition;
}

bool OmrDevice::demandOpen(const std::string& function)
{
    return demand(open_, function + " without an open reader");
}

void OmrDevice::note(SheetEvent event, const std::string& text, Int32 line, Int32 position)
{
    SheetRecord entry{event, transport_ ? transport_->number : 0, text, line, position};
    writeLine(toJson(entry));
    addKeepingLatest(log_, std::move(entry));
}

Int32 OmrDevice::fail(Int32 code, Int32 result)
{
    lastError_ = code;
    return result;
}

// --- The device

Int32 OmrDevice::open()
{
    const auto refused = begin("OMR_OpenDeviceUSB", {});
    demand(!open_, "OMR_OpenDeviceUSB while the reader is open");
    lastErrorDue_ = refused ? *refused != 0 : !state_.connected;
    if (refused)
        return *refused;
    if (!state_.connected)
        return fail(kSomeError, kSomeError);
    open_ = true;
    backSensor_.reset();
    return fail(0, 0);
}

// A host that could not open the reader closes it all the same.
Int32 OmrDevice::close()
{
    if (const auto refused = begin("OMR_CloseDevice", {}))
        return *refused;
    if (transport_)
        leave(SheetEvent::Ended, {});
    open_ = false;
    return 1;
}

Int32 OmrDevice::lastError()
{
    const bool due = lastErrorDue_;
    const auto refused = begin("OMR_GetLastError", {});
    demand(due, "OMR_GetLastError where nothing was opened or fed");
    return refused.value_or(lastError_);
}

Int32 OmrDevice::readingMethod(Int32& first, Int32& second)
{
    if (const auto refused = begin("OMR_GetReadingMethod", {}))
        return *refused;
    if (!demandOpen("OMR_GetReadingMethod"))
        return fail(kSomeError);
    first = state_.readingMethod[0];
    second = state_.readingMethod[1];
    return 1;
}

Int32 OmrDevice::setReadingMethod(Int32 method, Int32 second)
{
    if (const auto refused = begin("OMR_SetReadingMethod", {method, second}))
        return *refused;
    if (!demandOpen("OMR_SetReadingMethod"))
        return fail(kSomeError);
    demand(method == 3, "reading method " + std::to_string(method));
    demand(second == state_.readingMethod[1], "the reading method's second value is changed");
    demand(state_.readingMethod[0] != 0 && state_.readingMethod[0] != 3, "a good reading method is set anew");
    state_.readingMethod = {method, second};
    return 1;
}

Int32 OmrDevice::columns()
{
    if (const auto refused = begin("OMR_GetNumberOfColumnsToRead", {}))
        return *refused;
    return demandOpen("OMR_GetNumberOfColumnsToRead") ? state_.columns : fail(kSomeError);
}

Int32 OmrDevice::setColumns(Int32 count)
{
    if (const auto refused = begin("OMR_SetNumberOfColumnsToRead", {count}))
        return *refused;
    if (!demandOpen("OMR_SetNumberOfColumnsToRead"))
        return fail(kSomeError);
    demand(count == kColumnsWanted, std::to_string(count) + " columns");
    demand(count != state_.columns, "the number of columns is set anew");
    state_.columns = count;
    return 1;
}

Int32 OmrDevice::setBackSensor(Int32 on)
{
    if (const auto refused = begin("OMR_SetBackSensorUnit", {on}))
        return *refused;
    if (!demandOpen("OMR_SetBackSensorUnit"))
        return fail(kSomeError);
    demand(on == 0 || on == 1, "back sensor " + std::to_string(on));
    backSensor_ = on;
    return 1;
}

Int32 OmrDevice::feedMode(Int32& first, Int32& second)
{
    if (const auto refused = begin("OMR_GetSheetFeedMode", {}))
        return *refused;
    if (!demandOpen("OMR_GetSheetFeedMode"))
        return fail(kSomeError);
    first = state_.feedMode[0];
    second = state_.feedMode[1];
    return 1;
}

Int32 OmrDevice::setFeedMode(Int32 first, Int32 second)
{
    if (const auto refused = begin("OMR_SetSheetFeedMode", {first, second}))
        return *refused;
    if (!demandOpen("OMR_SetSheetFeedMode"))
        return fail(kSomeError);
    demand(first == 0 && second == 0, "feed mode " + std::to_string(first) + ", " + std::to_string(second));
    demand(state_.feedMode[0] != 0, "a good feed mode is set anew");
    state_.feedMode = {first, second};
    return 1;
}

// --- A sheet

void OmrDevice::checkReadiness()
{
    demand(state_.readingMethod[0] == 0 || state_.readingMethod[0] == 3, "a feed with another reading method");
    demand(state_.columns == kColumnsWanted, "a feed with another number of columns");
    demand(state_.feedMode[0] == 0, "a feed with another feed mode");
    demand(backSensor_.has_value(), "a feed before the back sensor was set");
}

SimulatedSheet OmrDevice::takeSheet()
{
    return given_.empty() ? random_.take() : given_.take();
}

Int32 OmrDevice::feed()
{
    const auto refused = begin("OMR_FeedSheet", {});
    lastErrorDue_ = true;
    if (refused)
        return *refused;
    if (!demandOpen("OMR_FeedSheet"))
        return fail(kSomeError);
    checkReadiness();
    if (transport_)
        leave(SheetEvent::Ejected, "next feed");

    ++feeds_;
    const auto entry = std::ranges::find(state_.feedCodes, feeds_, &OmrSimulationState::FeedCode::feed);
    Int32 code = entry == state_.feedCodes.end() ? 0 : entry->code;
    if (code == 0 && isFeederEmpty())
        code = kFeederEmpty;
    if (code == kFeederEmpty || isFeederEmpty()) {
        note(SheetEvent::Empty);
        return fail(code);
    }

    transport_ = Transport{.number = ++fed_, .sheet = takeSheet()};
    if (paperFaults_.value(SiteFault::Kind::DoubleFeed, 1) == fed_ && !isFeederEmpty())
        transport_->sheet = together(transport_->sheet, takeSheet());
    spoilt(paperFaults_, fed_, transport_->sheet);
    if (code != 0 && !isReadAllTheSame(code)) {
        note(SheetEvent::Jammed);
        transport_.reset();
        return fail(code);
    }
    note(SheetEvent::Fed);
    transport_->barcodesPrepared = areaSet_ && typesSet_;
    if (transport_->barcodesPrepared)
        demand(checkDigits_ == std::set<Byte>{'a', 'b', 'c'}, "a feed before the check digits were set");
    areaSet_ = typesSet_ = false;
    checkDigits_.clear();
    orderSet_ = false;
    printPosition_.reset();
    linesSet_ = 0;
    return fail(code, 1);
}

Int32 OmrDevice::marks(Int32 side, Int32 threshold, Int32& rows, Int32 columns, Byte* bytes)
{
    if (const auto refused = begin("OMR_GetMarks", {side, threshold, rows, columns}))
        return *refused;
    if (!demandOpen("OMR_GetMarks") || !demand(transport_.has_value(), "OMR_GetMarks without a sheet") ||
        !demand(side == 0 || side == 1, "marks of side " + std::to_string(side)) ||
        !demand(columns == state_.columns, "marks of another number of columns than was set") ||
        !demand(rows == kOmrMostRows, "marks of " + std::to_string(rows) + " rows"))
        return fail(kSomeError);
    if (side == 0) {
        demand(!transport_->frontFetched, "the front is fetched twice");
        transport_->frontFetched = true;
    } else {
        if (!demand(backSensor_ == 1, "the back is fetched with its sensor off"))
            return fail(kSomeError);
        demand(transport_->frontFetched && !transport_->backFetched, "the back is fetched out of turn");
        transport_->backFetched = true;
    }
    const MarkRows& cells = side == 0 ? transport_->sheet.side1 : transport_->sheet.side2;
    rows = static_cast<Int32>(cells.size());
    for (Int32 row = 1; row <= rows; ++row) {
        for (Int32 column = 1; column <= columns; ++column)
            *bytes++ = static_cast<Byte>(markAt(cells, row, column));
    }
    note(SheetEvent::Read, side == 0 ? "front" : "back");
    return 1;
}

Int32 OmrDevice::eject(Int32 outlet)
{
    if (const auto refused = begin("OMR_EjectSheet", {outlet}))
        return *refused;
    if (!demandOpen("OMR_EjectSheet") || !demand(transport_.has_value(), "OMR_EjectSheet without a sheet") ||
        !demand(outlet >= 1 && outlet <= 4, "outlet " + std::to_string(outlet)))
        return fail(kSomeError);
    const bool rejecter = outlet == 2 || outlet == 4;
    leave(rejecter ? SheetEvent::Rejected : SheetEvent::Ejected, "outlet " + std::to_string(outlet));
    return 1;
}

void OmrDevice::leave(SheetEvent event, const std::string& where)
{
    // A print that was refused on the way leaves the sheet as it is.
    if (linesSet_ == 3) {
        for (Int32 line = 1; line <= linesSet_; ++line)
            note(SheetEvent::Printed, printStrings_[static_cast<std::size_t>(line - 1)], line, *printPosition_);
    }
    note(event, where);
    transport_.reset();
    linesSet_ = 0;
}

Int32 OmrDevice::unexpected(const char* function)
{
    static_cast<void>(begin(function, {}));
    fault(std::string(function) + " is not called by this system");
    return fail(kSomeError);
}

} // namespace kel
