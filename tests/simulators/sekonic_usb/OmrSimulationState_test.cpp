// SPDX-License-Identifier: MIT
// The state that a simulated library starts from: as JSON, and out of the options of a simulator.

#include "simulators/sekonic_usb/OmrApiSimulation.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

namespace kel::omr_simulation_test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(OmrSimulationState, GoesThroughJsonAndBack)
{
    const OmrSimulationState state{
        .sheets = {{.side1 = {{1, 255}, {}}, .side2 = {{0}}, .barcodes = {"12"}, .fields = {}}},
        .randomSheets = {{.shape = {.side1Rows = 5,
                                    .side1Columns = 47,
                                    .side2Rows = 0,
                                    .side2Columns = 3,
                                    .lowestMark = 1,
                                    .highestMark = 15,
                                    .barcodes = 2},
                          .seeded = {.seed = ~std::uint64_t{}, .count = 1'000'000'000'000, .copies = true}}},
        .paperFaults = {{SiteFault::Kind::DoubleFeed, 2}, {SiteFault::Kind::DirtyHead}},
        .connected = false,
        .readingMethod = {5, -6},
        .columns = 40,
        .feedMode = {1, 2},
        .barcodeUnit = -1,
        .feedCodes = {{2, 0x40110001}},
        .refusals = {{"OMR_GetMarks", 3, -1, 7}},
        .logFile = "/tmp/a.log"};
    EXPECT_EQ(omrStateFromJson(toJson(state)), state);
    EXPECT_EQ(omrStateFromJson("{}"), OmrSimulationState{});
}

TEST(OmrSimulationState, TakesCodesAsNumbersOrTexts)
{
    const OmrSimulationState state = omrStateFromJson(
        R"({"feedCodes":[{"feed":1,"code":"0x40120003"},{"feed":2,"code":-5},{"feed":3,"code":"0xFFFFFFFF"}]})");
    EXPECT_THAT(state.feedCodes, ElementsAre(OmrSimulationState::FeedCode{1, 0x40120003},
                                             OmrSimulationState::FeedCode{2, -5}, OmrSimulationState::FeedCode{3, -1}));
}

TEST(OmrSimulationState, TellsWhereAMistakeIs)
{
    const struct {
        const char *json, *message;
    } rows[] = {
        {"[]", "the text has to be an object, not an array"},
        {R"({"colums":48})",
         "the text has an unknown key \"colums\"; the keys are sheets, randomSheets, paperFaults, "},
        {R"({"columns":"48"})", "columns has to be a whole number, not a text"},
        {R"({"connected":1})", "connected has to be true or false, not a number"},
        {R"({"readingMethod":[1]})", "readingMethod has to have two values"},
        {R"({"feedCodes":[{"feed":1}]})", "feedCodes[0] needs feed and code"},
        {R"({"feedCodes":[{"feed":0,"code":1}]})", "feedCodes[0].feed has to be a whole number from 1 to "},
        {R"({"feedCodes":[{"feed":1,"code":"40110000"}]})",
         "feedCodes[0].code has to be a code such as \"0x40110000\", not \"40110000\""},
        {R"({"feedCodes":[{"feed":1,"code":"0x"}]})", "feedCodes[0].code has to be a code"},
        {R"({"feedCodes":[{"feed":1,"code":"0x1FFFFFFFF"}]})", "feedCodes[0].code has to be a code"},
        {R"({"refusals":[{"call":1}]})", "refusals[0] needs a function"},
        {R"({"randomSheets":{"count":-1}})", "randomSheets.count has to be a whole number of at least 0, not -1"},
        {R"({"randomSheets":{"side1Rows":201}})", "randomSheets.side1Rows has to be a whole number from 0 to 200"},
        {R"({"paperFaults":["jam:2"]})",
         "paperFaults[0] has to be double-feed, dirty-head or skewed-sheet, not \"jam:2\""},
        {R"({"paperFaults":["double-feed:x"]})", "paperFaults[0] fault \"double-feed:x\""},
        {R"({"sheets":[{},{"side2":[[0],[-1]]}]})", "sheet 2, side2 has the mark -1, and marks are 0 to 255"},
    };
    for (const auto& row : rows) {
        try {
            static_cast<void>(omrStateFromJson(row.json));
            ADD_FAILURE() << row.json;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), HasSubstr(row.message)) << row.json;
        }
    }
    SimulatedSheet tall;
    tall.side1.resize(201);
    EXPECT_THROW(static_cast<void>(omrStateFromJson(toJson(OmrSimulationState{.sheets = {tall}}))), std::runtime_error);
}

TEST(OmrSimulationOptions, GiveThePileTheFaultsAndTheSettings)
{
    SimulatorOptions options;
    options.sheets.put({.side1 = {{1}}, .side2 = {}, .barcodes = {}, .fields = {}});
    options.seeded = SeededSheets{.seed = 4, .count = 2};
    options.form.side1Rows = {5};
    options.form.barcodes.resize(2);
    options.faults = {parseFault("jam@sheet=2"), parseFault("empty@sheet=3")};
    options.settings = {{"columns", "40"}, {"barcodeUnit", "-1"}};
    const OmrSimulationState state = omrSimulationState(options);
    ASSERT_EQ(state.sheets.size(), 1U);
    EXPECT_EQ(state.sheets[0].side1, (MarkRows{{1}}));
    ASSERT_TRUE(state.randomSheets);
    EXPECT_EQ(state.randomSheets->seeded, (SeededSheets{.seed = 4, .count = 2}));
    EXPECT_EQ(state.randomSheets->shape.side1Rows, 5);
    EXPECT_EQ(state.randomSheets->shape.side2Rows, 60);
    EXPECT_EQ(state.randomSheets->shape.barcodes, 2);
    EXPECT_THAT(state.feedCodes,
                ElementsAre(OmrSimulationState::FeedCode{2, 0x35090000}, OmrSimulationState::FeedCode{3, 0x40110000}));
    EXPECT_EQ(state.columns, 40);
    EXPECT_EQ(state.barcodeUnit, -1);
}

TEST(OmrSimulationOptions, RefuseWhatAUsbReaderHasNot)
{
    SimulatorOptions options;
    options.faults = {parseFault("drop@byte=3")};
    EXPECT_THROW(static_cast<void>(omrSimulationState(options)), std::invalid_argument);
    options.faults = {parseFault("silent@sheet=3")};
    EXPECT_THROW(static_cast<void>(omrSimulationState(options)), std::invalid_argument);
    options.faults = {};
    options.settings = {{"line", "9600,N,8,1"}};
    EXPECT_THROW(static_cast<void>(omrSimulationState(options)), std::invalid_argument);
    options.settings = {{"columns", "many"}};
    EXPECT_THROW(static_cast<void>(omrSimulationState(options)), std::invalid_argument);
}

} // namespace
} // namespace kel::omr_simulation_test
