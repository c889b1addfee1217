// SPDX-License-Identifier: MIT
#include "tests/simulators/ezdata/PackedRoundTrip.h"

// What each of the seven models with packed marks is sent in a whole session, byte for byte.

namespace kel::test {
namespace {

std::string setUp(const std::string& letters)
{
    return "\x1B" + letters + "\r";
}

const std::string kStartProbe = "\x12R7777I00E";

struct SevenModel {
    kelReaderType type;
    bool feeder;
    std::string start;
    std::string sheet;
    std::string rejectToHopper; // with `Rejecter`
    std::string reject;         // without
    std::string eject;
    std::string end;
};

const SevenModel kSevenModels[] = {
    {kelReaderTypeNCSEZData, false, frame("GETCONFIG") + frame("S"), frame("E"), frame("EF"), frame("ER"), frame("ER"),
     frame("D")},
    {kelReaderTypeChatsworthACF100, true, frame("GETCONFIG") + frame("S"), frame("E"), frame("EF"), frame("ER"),
     frame("ER"), frame("D")},
    {kelReaderTypeChatsworthOMR1100, false, kStartProbe, "", "", "", "", ""},
    {kelReaderTypeChatsworthOMR1100, true, kStartProbe, "", "", "", "", ""},
    {kelReaderTypeChatsworthOMR2000, false, kStartProbe, "\x11", "", "", "", ""},
    {kelReaderTypeChatsworthALSAccelScanOMR, true, kStartProbe, frame("E"), frame("EF"), frame("ER"), frame("ER"), ""},
    {kelReaderTypeChatsworthACF200, false, setUp("SF") + setUp("HCD") + kStartProbe, "", "", "", "", ""},
    {kelReaderTypeChatsworthACF200, true, setUp("SL") + setUp("HCE") + kStartProbe, setUp("F"), "", "", "", ""},
    {kelReaderTypeChatsworthACP200, false, setUp("SF") + setUp("FD"), "", "", "", "", ""},
    {kelReaderTypeChatsworthACP200, true, setUp("SL") + setUp("HCE"), setUp("F"), "", "", "", ""},
};

class SevenModelsTest : public testing::TestWithParam<SevenModel> {};

TEST_P(SevenModelsTest, AreSentTheirOwnAndNothingElse)
{
    const SevenModel& model = GetParam();
    std::map<std::string, std::string> settings;
    if (model.type == kelReaderTypeChatsworthACF100)
        settings["threshold"] = "76";
    PackedReader bench(model.type, std::vector<SimulatedSheet>(3, {.side1 = MarkRows(1)}), settings);
    bench.reader().Feeder(model.feeder);
    // The models differ in nothing that these settings say.
    bench.reader().Duplex(True);
    bench.reader().DuplexForm(True);
    bench.reader().Barcode(True);
    bench.reader().RecognitionMode(kelRecognitionTypeWindow);

    EXPECT_EQ(bench.reader().StartReader(), True);
    EXPECT_EQ(bench.host.sent(), model.start);
    for (const auto& [rejecter, reject] : {std::pair(True, model.rejectToHopper), std::pair(False, model.reject)}) {
        EXPECT_EQ(bench.reader().ReadPage(True), True);
        EXPECT_EQ(bench.host.sent(), model.sheet);
        bench.reader().Rejecter(rejecter);
        bench.reader().RejectPage();
        EXPECT_EQ(bench.host.sent(), reject);
        bench.reader().EjectPage(); // it is decided on
        EXPECT_EQ(bench.host.sent(), "");
    }
    EXPECT_EQ(bench.reader().ReadPage(True), True);
    EXPECT_EQ(bench.host.sent(), model.sheet);
    bench.reader().EjectPage();
    EXPECT_EQ(bench.host.sent(), model.eject);
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), model.end);
    bench.expectNoComplaints();
}

INSTANTIATE_TEST_SUITE_P(Models, SevenModelsTest, testing::ValuesIn(kSevenModels), [](const auto& model) {
    return "Model" + std::to_string(model.param.type) + (model.param.feeder ? "Feeder" : "");
});

} // namespace
} // namespace kel::test
