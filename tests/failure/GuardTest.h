// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FailingAllocation.h"
#include "tests/support/FailingLine.h"
#include "tests/support/ReaderHost.h"
#include "tests/support/SteppedFault.h"

#include "reader/ReaderSession.h"
#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace kel::test {

// Every procedure with a guard is made to fail here: what fails within it is reported under its name, once, and it ends
// normally with the result that it had got so far. Each area has a table of its own; `EveryGuard` sees to it that no
// procedure of the component is missing in them.

/// A reader object whose line, host and memory fail when they are told to.
class GuardBench {
public:
    GuardBench() : scope_(machine)
    {
        setErrorObject(host);
        // The texts are there before memory fails: a load without memory leaves nothing, and is no failure.
        static_cast<void>(VBLM_RTString(text::kNotReadyTitle));
        line = std::make_shared<FailingLine>();
        reader.carrier(line);
        reader.events().add(host);
        reader.CancelScan(False);
        reader.settings().SleepTime = 1;
    }
    ~GuardBench()
    {
        setErrorObject(nullptr);
        FailingAllocation::disarm();
    }
    GuardBench(const GuardBench&) = delete;
    GuardBench& operator=(const GuardBench&) = delete;

    /// The line fails, and then there is no memory for the report of that: the procedure that was running cannot deal
    /// with it, and its caller gets the failure.
    void failWithoutReport(int nth = 1)
    {
        line->failsAt(nth, [] { FailingAllocation::arm(); });
    }

    SimulatedPlatform machine;

private:
    PlatformScope scope_;

public:
    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
    std::shared_ptr<FailingLine> line;
    ReaderSession reader;
};

/// How the failure comes about.
enum class FailsBy {
    Statement, ///< a statement of the procedure
    Caller,    ///< in a procedure that is called and cannot deal with it: the last resort's box tells of that too
    Processor, ///< no statement can fail: a fault of the processor, between `SteppedFault::arm` and `disarm`
};

/// One way to make one procedure fail.
struct GuardCase {
    std::string procedure; ///< "basScantron.InitReaderST"
    FailsBy by;
    Int32 number; ///< of the failure; not looked at for a fault of the processor
    /// Calls the procedure, and expects of its result what it has got so far.
    std::function<void(GuardBench& bench)> run;

    friend std::ostream& operator<<(std::ostream& out, const GuardCase& guard) { return out << guard.procedure; }
};

/// The cases of all tables.
[[nodiscard]] const std::vector<GuardCase>& allGuardCases();

/// A table of cases. Each becomes a test of the suite `name`.
class GuardTable {
public:
    GuardTable(const char* name, const std::vector<GuardCase>& cases);
};

} // namespace kel::test
