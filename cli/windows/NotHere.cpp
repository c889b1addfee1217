// SPDX-License-Identifier: MIT
// What the command has on other systems alone.

#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/PlayForOthers.h"
#include "cli/ScanStore.h"
#include "host/UsageError.h"

#include <exception>

namespace kel {

namespace {

constexpr const char* kNoStore =
    "On Windows there is no store of sheets; 'kelreader scan --out FILE' keeps them, with --format json, csv or html.";

/// A command that no help lists; it reports why it is not in this edition.
void addAbsent(Commands& commands, const std::string& name, const char* why)
{
    commands.add(name, why, [why]() -> int { throw host::UsageError(why); }).group("")->allow_extras();
}

[[noreturn]] void refuseToPlay()
{
    throw host::UsageError(
        "On Windows no reader can be played for other programs; 'kelreader scan --simulate' reads from "
        "one, and 'kelreader simulate --list-faults' lists what can go wrong with it.");
}

} // namespace

int playReader(const PlayedModel&, const std::string&)
{
    refuseToPlay();
}

int playLibrary(const PlayedModel&, const std::string&)
{
    refuseToPlay();
}

struct ScanStore::State {};

ScanStore::ScanStore(const StoreNames&)
{
    throw host::UsageError(kNoStore);
}

ScanStore::~ScanStore() = default;

Int32 ScanStore::sheetsBefore()
{
    std::terminate(); // no object has been made
}

host::Events& ScanStore::events(host::Reader&, host::Events&)
{
    std::terminate();
}

void ScanStore::demandAll() const {}

void addStationCommand(Commands& commands)
{
    addAbsent(commands, "station",
              "A station of many readers runs on Linux alone; 'kelreader scan' reads with one reader here.");
}

void addSheetsCommand(Commands& commands)
{
    addAbsent(commands, "sheets", kNoStore);
}

void addCollectCommand(Commands& commands)
{
    addAbsent(commands, "collect", kNoStore);
}

} // namespace kel
