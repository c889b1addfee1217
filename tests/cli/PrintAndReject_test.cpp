// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "host/Batch.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

// What print texts and rejects of a scan do to the sheets, as the simulated readers note it: three sheets, of which the
// second is rejected by its number or for being blank.

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// Where a model sends the sheet that is rejected.
enum class Reject {
    Hopper,  ///< to the reject side
    Stack,   ///< to the usual stack, though by the same command
    Nowhere, ///< it is told nothing, and the sheet goes with the next one
};

struct Model {
    kelReaderType type;
    Reject byDefault;
    Reject withRejecter;
    const char* hopper = "";      ///< what the reject side is called
    const char* lastStacker = ""; ///< where the last sheet is sent to
    bool tellsEnd = false;        ///< whether the end of the session is told
};

constexpr Model kModels[] = {
    {kelReaderTypeScantronScanMark2000, Reject::Stack, Reject::Hopper, "C", "A"},
    {kelReaderTypeScantronScanMark2250, Reject::Stack, Reject::Hopper, "C", "A"},
    {kelReaderTypeScantronScanMark2500, Reject::Stack, Reject::Hopper, "C", "A"},
    {kelReaderTypeScantronScanMark4000, Reject::Hopper, Reject::Hopper, "C", "A"},
    {kelReaderTypeScantronScanMark5500, Reject::Hopper, Reject::Hopper, "C", "A"},
    {kelReaderTypeScantron8000, Reject::Nowhere, Reject::Nowhere},
    {kelReaderTypeScantron8400, Reject::Nowhere, Reject::Nowhere},
    {kelReaderTypeScantronScanMarkES2010, Reject::Nowhere, Reject::Nowhere},
    {kelReaderTypeScantronScanMarkES2260, Reject::Nowhere, Reject::Nowhere},
    {kelReaderTypeScantronScanMarkES2800, Reject::Stack, Reject::Hopper, "C", "A"},
    {kelReaderTypeNCSOpScan2, Reject::Nowhere, Reject::Hopper, "reject", "", true},
    {kelReaderTypeNCSOpScan3, Reject::Nowhere, Reject::Hopper, "reject"},
    {kelReaderTypeNCSOpScan4, Reject::Nowhere, Reject::Hopper, "reject"},
    {kelReaderTypeNCSOpScan5, Reject::Nowhere, Reject::Hopper, "reject"},
    {kelReaderTypeNCSOpScan6, Reject::Nowhere, Reject::Hopper, "reject"},
    {kelReaderTypeNCSOpScan7, Reject::Hopper, Reject::Hopper, "reject"},
    {kelReaderTypeNCSOpScan8, Reject::Hopper, Reject::Hopper, "reject"},
    {kelReaderTypeNCSOpScaniNSIGHT2, Reject::Nowhere, Reject::Hopper, "reject", "", true},
    {kelReaderTypeNCSOpScaniNSIGHT4, Reject::Nowhere, Reject::Hopper, "reject"},
};

class PrintAndReject : public testing::TestWithParam<Model> {
protected:
    PrintAndReject() : scope_(machine_)
    {
        const std::vector<SimulatedSheet> sheets = {{.side1 = {{1, 0, 2}}}, {.side1 = {{0}}}, {.side1 = {{3}}}};
        device_ = makeSimulator(GetParam().type, {.sheets = SheetFeeder::of(sheets)});
        machine_.attach(1, *device_);
        request_.model = GetParam().type;
        request_.port = Int16{1};
        request_.maxSheets = 3;
        request_.form =
            host::parseForm(R"({"recognitionMode":"page","side1Rows":[1],"side1Cols":[48],"side2Rows":[0]})", "form");
        request_.assignments = {"Duplex=false"};
        request_.print = {.print1 = "No. {sheet}", .print2 = "never sent", .print3 = {}, .distance = Int16{7}};
    }

    /// Scans, and demands of each sheet's line whether it was rejected and printed.
    void scan()
    {
        std::vector<std::string> failures;
        std::vector<std::pair<bool, bool>> sheets;
        JsonLines sink([&](const std::string& line) {
            const auto event = nlohmann::json::parse(line);
            if (event["event"] == "failure")
                failures.push_back(line);
            if (event["event"] == "sheet")
                sheets.emplace_back(event["rejected"], event["printed"]);
        });
        clsKELReader reader;
        host::prepareReader(reader, request_);
        static_cast<void>(host::runScan(reader, request_, sink));
        EXPECT_THAT(failures, IsEmpty());
        EXPECT_THAT(sheets, ElementsAre(std::pair(false, true), std::pair(true, false), std::pair(false, true)));
        EXPECT_THAT(device_->errors(), IsEmpty());
    }

    void expectLog(Reject reject) const
    {
        std::vector<SheetRecord> expected = {
            {SheetEvent::Fed, 1},     {SheetEvent::Read, 1}, {SheetEvent::Printed, 1, "No. 1", 1, 7},
            {SheetEvent::Ejected, 1}, {SheetEvent::Fed, 2},  {SheetEvent::Read, 2}};
        switch (reject) {
        case Reject::Hopper: expected.push_back({SheetEvent::Rejected, 2, GetParam().hopper}); break;
        case Reject::Stack: expected.push_back({SheetEvent::Ejected, 2, "A"}); break;
        case Reject::Nowhere: expected.push_back({SheetEvent::Ejected, 2}); break;
        }
        expected.insert(expected.end(), {{SheetEvent::Fed, 3},
                                         {SheetEvent::Read, 3},
                                         {SheetEvent::Printed, 3, "No. 3", 1, 7},
                                         {SheetEvent::Ejected, 3, GetParam().lastStacker}});
        if (GetParam().tellsEnd)
            expected.push_back({SheetEvent::Ended, 3});
        EXPECT_THAT(device_->log(), ElementsAreArray(expected));
    }

    SimulatedPlatform machine_;
    PlatformScope scope_;
    std::unique_ptr<Simulator> device_;
    host::Request request_;
};

TEST_P(PrintAndReject, ByItsNumber)
{
    request_.rejectSheets = {2};
    scan();
    expectLog(GetParam().byDefault);
}

TEST_P(PrintAndReject, ForBeingBlank)
{
    request_.rejectBlank = true;
    scan();
    expectLog(GetParam().byDefault);
}

TEST_P(PrintAndReject, WithTheRejecter)
{
    request_.rejectSheets = {2};
    request_.assignments.emplace_back("Rejecter=true");
    scan();
    expectLog(GetParam().withRejecter);
}

INSTANTIATE_TEST_SUITE_P(Models, PrintAndReject, testing::ValuesIn(kModels),
                         [](const auto& model) { return "Type" + std::to_string(model.param.type); });

} // namespace
} // namespace kel::test
