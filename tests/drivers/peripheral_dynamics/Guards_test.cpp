// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/peripheral_dynamics/basPeripheralDynamics.h"

namespace kel::test {
namespace {

/// A reader without anything to say against a sheet: its status byte by byte.
void answerByteByByte(GuardBench& bench)
{
    bench.line->InputLen(1);
    bench.line->onOutput = [&](std::string_view bytes) {
        if (bytes == "Q")
            bench.line->waiting += std::string("Q\0\0", 3);
    };
}

const std::vector<GuardCase> kPeripheralDynamicsGuards = {
    {"basPeripheralDynamics.InitReaderPD", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("0");
         EXPECT_EQ(InitReaderPD(bench.reader), False);
     }},
    {"basPeripheralDynamics.CloseReaderPD", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("9");
         CloseReaderPD(bench.reader);
     }},
    {"basPeripheralDynamics.SetRecThresholdPD", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         EXPECT_EQ(SetRecThresholdPD(bench.reader, 2147483647), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
    // The first of the two bytes has come by then.
    {"basPeripheralDynamics.CheckStatusPD", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         Int16 iStatusByte1 = 0;
         Int16 iStatusByte2 = 0;
         bench.line->InputLen(1);
         bench.line->onOutput = [&](std::string_view) {
             bench.line->waiting = "Q@A";
             bench.line->failsAt(4);
         };
         EXPECT_EQ(CheckStatusPD(bench.reader, iStatusByte1, iStatusByte2), False);
         EXPECT_EQ(iStatusByte1, '@');
         EXPECT_EQ(iStatusByte2, 0);
     }},
    {"basPeripheralDynamics.ReadPagePD", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         answerByteByByte(bench);
         bench.line->failsAtOutput("8");
         EXPECT_EQ(ReadPagePD(bench.reader), False);
     }},
    {"basPeripheralDynamics.RejectPagePD", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("3");
         RejectPagePD(bench.reader);
         EXPECT_TRUE(bench.machine.sleeps().empty());
     }},
    {"basPeripheralDynamics.EjectPagePD", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("4");
         EjectPagePD(bench.reader);
         EXPECT_TRUE(bench.machine.sleeps().empty());
     }},
};

const GuardTable peripheralDynamicsGuards("PeripheralDynamicsGuards", kPeripheralDynamicsGuards);

} // namespace
} // namespace kel::test
