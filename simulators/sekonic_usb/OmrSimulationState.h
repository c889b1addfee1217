// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SheetFeeder.h"
#include "simulators/framework/SheetLog.h"
#include "simulators/framework/SimulatedSheet.h"
#include "simulators/framework/SiteFault.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The rows of the largest sheet.
inline constexpr Int32 kOmrMostRows = 200;

/// What the simulated library has before the host calls it: the reader on the cable and the pile in its feeder.
struct OmrSimulationState {
    std::vector<SimulatedSheet> sheets{}; ///< marks from 0 to 255; columns that a sheet does not have are empty

    /// Sheets that a seed gives, which lie under the others.
    struct RandomSheets {
        SheetShape shape{.side1Rows = 60,
                         .side1Columns = 48,
                         .side2Rows = 60,
                         .side2Columns = 48,
                         .lowestMark = 1,
                         .highestMark = 15};
        SeededSheets seeded{};

        friend bool operator==(const RandomSheets&, const RandomSheets&) = default;
    };
    std::optional<RandomSheets> randomSheets{};

    /// What becomes of sheets on their way in: those for which `isOmrPaperFault` is true.
    std::vector<SiteFault> paperFaults{};

    bool connected = true;                    ///< whether there is a reader to open
    std::array<Int32, 2> readingMethod{3, 0}; ///< the two values that the reader reports
    Int32 columns = 48;
    std::array<Int32, 2> feedMode{0, 0};
    Int32 barcodeUnit = 0; ///< -1 there is none, 0 off, 1 on

    /// What `OMR_GetLastError` returns at the n-th feed, from 1. Three codes leave the sheet read, 0x40110000 leaves it
    /// in the feeder, any other leaves it stuck.
    struct FeedCode {
        Int32 feed = 0;
        Int32 code = 0;

        friend bool operator==(const FeedCode&, const FeedCode&) = default;
    };
    std::vector<FeedCode> feedCodes{};

    /// The n-th call of a function, from 1, does nothing and answers this.
    struct Refusal {
        std::string function;
        Int32 call = 1;
        Int32 result = 0;
        Int32 code = 0; ///< the last error after it

        friend bool operator==(const Refusal&, const Refusal&) = default;
    };
    std::vector<Refusal> refusals{};

    /// Gets a line for every entry of the log and every fault; empty for none.
    std::filesystem::path logFile{};

    friend bool operator==(const OmrSimulationState&, const OmrSimulationState&) = default;
};

/// Whether it is a fault that makes other sheets of those in the feeder: "double-feed", "dirty-head", "skewed-sheet".
[[nodiscard]] bool isOmrPaperFault(SiteFault::Kind kind);

/// What has happened in the simulated library since it was set up.
struct OmrSimulationReport {
    std::vector<std::string> calls;          ///< the latest, names and arguments, in order: "OMR_EjectSheet 3"
    std::vector<std::string> faults;         ///< what the host did wrongly; a test fails if anything stands here
    std::vector<SheetRecord> log;            ///< where the latest sheets went, with outlet codes as texts: "outlet 3"
    bool open = false;                       ///< whether the host has the reader open
    Int32 remaining = 0;                     ///< sheets that are still in the feeder
    std::array<std::string, 3> printStrings; ///< the print lines that are set in the library

    friend bool operator==(const OmrSimulationReport&, const OmrSimulationReport&) = default;
};

/// Both as JSON, and back. What a state does not say stays as it is in a new one; codes are numbers or texts such as
/// "0x40110000". Mistakes are JsonRefusal with their place: "refusals[1].function has to be a text, not a number".
[[nodiscard]] std::string toJson(const OmrSimulationState& state);
[[nodiscard]] OmrSimulationState omrStateFromJson(std::string_view text);
[[nodiscard]] std::string toJson(const OmrSimulationReport& report);
[[nodiscard]] OmrSimulationReport omrReportFromJson(std::string_view text);

} // namespace kel
