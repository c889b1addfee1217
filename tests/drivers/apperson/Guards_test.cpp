// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/apperson/basApperson.h"

namespace kel::test {
namespace {

void begin(GuardBench& bench, kelReaderType model)
{
    bench.reader.ReaderType(model);
    bench.reader.Side1Rows(pages({2}));
    bench.reader.Side1Cols(pages({5}));
}

const GuardTable appersonGuards("AppersonGuards",
                                {
                                    {"basApperson.InitReaderAP", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonBenchMark3000);
                                         bench.line->failsAtOutput("R1");
                                         EXPECT_EQ(InitReaderAP(bench.reader), False);
                                     }},
                                    {"basApperson.CloseReaderAP", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonGradeMaster);
                                         bench.line->failsAtOutput("S9\r");
                                         EXPECT_EQ(CloseReaderAP(bench.reader), False);
                                     }},
                                    {"basApperson.ReadPageAP", FailsBy::Caller, 7,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonAdvantageLink);
                                         bench.failWithoutReport();
                                         EXPECT_EQ(ReadPageAP(bench.reader), False);
                                     }},
                                    {"basApperson.RejectPageAP", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonBenchMark3000);
                                         bench.line->failsAtOutput("A7");
                                         EXPECT_EQ(RejectPageAP(bench.reader), False);
                                     }},
                                    {"basApperson.EjectPageAP", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonBenchMark3000);
                                         bench.line->failsAtOutput("A6");
                                         EXPECT_EQ(EjectPageAP(bench.reader), False);
                                     }},
                                    {"basApperson.ReturnErrorAP", FailsBy::Statement, 7,
                                     [](GuardBench&) {
                                         const FailingAllocation noMemory;
                                         EXPECT_EQ(ReturnErrorAP(80), "");
                                     }},
                                    {"basApperson.ReadPageAPAdvantageLink", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonAdvantageLink);
                                         bench.line->failsAtOutput("FB\r");
                                         EXPECT_EQ(ReadPageAPAdvantageLink(bench.reader), False);
                                     }},
                                    {"basApperson.ReadPageAPGradeMaster", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonGradeMaster);
                                         bench.line->failsAtOutput("P\r");
                                         EXPECT_EQ(ReadPageAPGradeMaster(bench.reader), False);
                                     }},
                                    {"basApperson.ReadPageAPBenchMarkAdvantage", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonBenchMark3000);
                                         bench.line->failsAt(1);
                                         EXPECT_EQ(ReadPageAPBenchMarkAdvantage(bench.reader), False);
                                     }},
                                    {"basApperson.ReadPageAPAdvantage1200", FailsBy::Statement, 8020,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonAdvantage1200);
                                         bench.line->failsAt(1);
                                         EXPECT_EQ(ReadPageAPAdvantage1200(bench.reader), False);
                                     }},
                                    // The sheet is through the reader: it counts as read though the host fails with it.
                                    {"basApperson.ReadPageAPBenchMarkAdvantage", FailsBy::Caller, 13,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonBenchMark3000);
                                         bench.line->InputLen(1);
                                         bench.line->waiting =
                                             "000000012345xxxx00001xxxxxTEST-IDENTIFYSCHOOL-IDENTICLASS-IDENTIFE000" +
                                             std::string(49, 'x') + "A,B\r\n";
                                         bench.host->onTranslateData = [](Dictionary&, MarkArray&, MarkArray&,
                                                                          TextArray&, Boolean&) {
                                             throw RuntimeFailure(FailureCode::TypeMismatch);
                                         };
                                         EXPECT_EQ(ReadPageAPBenchMarkAdvantage(bench.reader), True);
                                         EXPECT_FALSE(bench.reader.side1().isDimensioned());
                                     }},
                                    {"basApperson.ReadPageAPAdvantage1200", FailsBy::Caller, 13,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonAdvantage1200);
                                         bench.line->waiting = "000000012345Vxxx001200001000000000A,B\r\n";
                                         bench.host->onTranslateData = [](Dictionary&, MarkArray&, MarkArray&,
                                                                          TextArray&, Boolean&) {
                                             throw RuntimeFailure(FailureCode::TypeMismatch);
                                         };
                                         EXPECT_EQ(ReadPageAPAdvantage1200(bench.reader), False);
                                     }},
                                    {"basApperson.KeyReaderBenchMark3000Advantage1200", FailsBy::Statement, 91,
                                     [](GuardBench& bench) {
                                         begin(bench, kelReaderTypeAppersonAdvantage1200);
                                         EXPECT_EQ(KeyReaderBenchMark3000Advantage1200(bench.reader), False);
                                     }},
                                });

} // namespace
} // namespace kel::test
