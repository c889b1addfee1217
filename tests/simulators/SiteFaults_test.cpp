// SPDX-License-Identifier: MIT
#include "profiles/Catalogue.h"
#include "simulators/SimulatorTable.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

// What is wrong where a reader stands, for each family: whether a host that reads three sheets notices.

namespace kel::test {
namespace {

using namespace std::chrono_literals;

constexpr Int32 kSheets = 3;

/// All that comes of a session.
struct Outcome {
    bool read = false;
    Int32 count = 0;
    std::vector<std::string> reports;
    std::vector<MarkArray> side1;
    std::vector<TextArray> barcodes;
    Int16 timingMarks = -1;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

/// A Scanmark sends pages of 48 columns, and no narrower array holds one.
Int16 columnsOf(kelReaderType model)
{
    return simulatedFamily(model) == SimulatedFamily::Scanmark ? 48 : 12;
}

Outcome sessionOf(kelReaderType model, const std::vector<SiteFault>& faults)
{
    const FormDescription form{.side1Rows = {10}, .side1Cols = {columnsOf(model)}};
    const std::unique_ptr<Simulator> device =
        makeSimulator(model, {.seeded = SeededSheets{.seed = 9, .count = kSheets}, .form = form, .siteFaults = faults});
    ReaderHost host;
    host.connect(model, *device);
    host.reader().RecognitionMode(kelRecognitionTypePage);
    host.reader().Duplex(False);
    host.reader().DuplexForm(False);
    host.reader().Side2Rows(pages({0}));
    host.reader().Side2Cols(pages({0}));
    host.reader().Side1Rows(pages({10}));
    host.reader().Side1Cols(pages({columnsOf(model)}));
    host.machine.at(host.machine.now() + 1h, [&] { host.reader().CancelScan(True); });
    Outcome outcome;
    outcome.read = host.reader().ReadBatch(False, kSheets, outcome.count) == True;
    outcome.timingMarks = host.reader().Side1TimingMarks();
    for (const HeardSheet& sheet : host.heard().sheets) {
        outcome.side1.push_back(sheet.side1);
        outcome.barcodes.push_back(sheet.barcodes);
    }
    for (const ErrorReport& report : host.heard().reports)
        outcome.reports.push_back(report.ErrorSource + ": " + report.ErrorDescription);
    return outcome;
}

/// Models of families on a line.
constexpr kelReaderType kModels[] = {kelReaderTypeAppersonAdvantageLink,
                                     kelReaderTypeChatsworthACF200,
                                     kelReaderTypeNCSEZData,
                                     kelReaderTypeNCSOpScan5,
                                     kelReaderTypePDIVMR138,
                                     kelReaderTypeScantronScanMark2500,
                                     kelReaderTypeScanningSystemsSR601};

class SiteFaultSessions : public testing::TestWithParam<kelReaderType> {};

TEST_P(SiteFaultSessions, AHealthyReaderIsReadWithoutAReport)
{
    const Outcome outcome = sessionOf(GetParam(), {});
    EXPECT_TRUE(outcome.read);
    EXPECT_THAT(outcome.reports, testing::IsEmpty());
    EXPECT_EQ(outcome.count, kSheets);
}

/// A clock that is a little off and a stop bit more or less do no harm, and neither do pieces that come late. Whether
/// the others do is the family's.
TEST_P(SiteFaultSessions, WhatIsHarmlessIsNotNoticed)
{
    const Outcome healthy = sessionOf(GetParam(), {});
    for (const char* text : {"clock-off", "clock-off:-2", "wrong-stop-bits"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(sessionOf(GetParam(), {*parseSiteFault(text)}), healthy);
    }
}

TEST_P(SiteFaultSessions, WhatDoesHarmShows)
{
    const Outcome healthy = sessionOf(GetParam(), {});
    for (const char* text : {"wrong-speed", "handshaking-unwired", "echo", "other-model", "switched-off",
                             "switched-off:0", "empty-feeder", "jam", "double-feed", "dirty-head", "skewed-sheet"}) {
        SCOPED_TRACE(text);
        EXPECT_NE(sessionOf(GetParam(), {*parseSiteFault(text)}), healthy);
    }
}

TEST_P(SiteFaultSessions, NoneOfThemIsMoreThanASessionTakes)
{
    for (const SiteFaultEntry& entry : siteFaults()) {
        if (!entry.appliesTo(simulatedFamily(GetParam())))
            continue;
        SCOPED_TRACE(std::string(entry.name));
        static_cast<void>(sessionOf(GetParam(), {{.kind = entry.kind}}));
    }
}

INSTANTIATE_TEST_SUITE_P(Models, SiteFaultSessions, testing::ValuesIn(kModels),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

TEST(SiteFaults, UsualLinesAreThoseOfTheCatalogue)
{
    for (const CatalogueGroup& group : catalogue())
        for (const CatalogueModel& model : group.Models) {
            SCOPED_TRACE(model.ReaderType);
            if (model.Link.InterfaceType == kelReaderInterfaceTypeUSB) {
                EXPECT_EQ(usualLine(model.ReaderType), "");
                EXPECT_EQ(simulatedFamily(model.ReaderType), SimulatedFamily::SekonicUsb);
                continue;
            }
            const LineDefaults line = model.Link.Defaults.value();
            EXPECT_EQ(usualLine(model.ReaderType), std::to_string(static_cast<int>(line.BaudRate)) + "," + line.Parity +
                                                       "," + std::to_string(line.DataBits) + "," +
                                                       std::to_string(static_cast<int>(line.StopBits)));
        }
}

TEST(SiteFaults, BelongToTheirFamilies)
{
    const auto make = [](const char* fault) {
        return makeSimulator(kelReaderTypePDIVMR138, {.siteFaults = {parseSiteFault(fault).value()}});
    };
    EXPECT_THROW(make("not-connected"), std::invalid_argument);
    EXPECT_THROW(make("other-model:30"), std::invalid_argument);
    EXPECT_NO_THROW(make("other-model:13"));
}

TEST(SiteFaults, AStatusIsAByteLongerOrShorter)
{
    for (const auto& [fault, length] : {std::pair{"status-longer", 4U}, {"status-shorter", 2U}}) {
        const auto device = makeSimulator(kelReaderTypePDIVMR138, {.siteFaults = {parseSiteFault(fault).value()}});
        device->lineOpened(Moment{}, {});
        device->byteFromHost(Moment{}, '0');
        device->byteFromHost(Moment{}, 'Q');
        std::size_t bytes = 0;
        while (device->nextEvent())
            bytes += device->takeByte(*device->nextEvent()) ? 1 : 0;
        EXPECT_EQ(bytes, length);
    }
}

} // namespace
} // namespace kel::test
