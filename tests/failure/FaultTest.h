// SPDX-License-Identifier: MIT
#pragma once

#include "failure/guarded.h"
#include "failure/modvbCodeShieldSupport.h"
#include "platform/ControlAround.h"
#include "platform/posix/PosixFaultCapture.h"
#include "simulators/SimulatorTable.h"
#include "strings/VBLMRTSModule.h"
#include "tests/failure/Faults.h"
#include "tests/support/ReaderHost.h"

#include <gtest/gtest.h>

#include <vector>

namespace kel::test {

inline constexpr const char* kSource = "KELReader81 - m.p";

#if defined(__clang__)
inline constexpr bool kFaultsAreCaptured = false;
#else
inline constexpr bool kFaultsAreCaptured = true;
#endif

/// An object of the component's, whose procedures a host calls.
struct Object {
    std::string dumpMembers() const { return {}; }
};

template <class Body>
void procedureOfAnObject(Body&& body)
{
    const Object object;
    guarded(kSource, moduleOf(object), std::forward<Body>(body));
}
inline Int32 procedureLine()
{
    return __LINE__ - 4;
}

inline void installCapture()
{
    PosixFaultCapture::instance().install(&vbcsExceptionFilter);
}

/// Faults in procedures: what is reported of them, with the host's error object as the witness.
class ProcessorFault : public testing::Test {
protected:
    ProcessorFault()
    {
        setErrorObject(witness);
        installCapture();
    }
    ~ProcessorFault() override { setErrorObject(nullptr); }

    void SetUp() override
    {
        if (!kFaultsAreCaptured)
            GTEST_SKIP() << "this compiler's code cannot be left at any statement";
    }

    /// Number and text of the one report that a body brings about.
    template <class Body>
    std::string reportOf(Body&& body)
    {
        witness->reports.clear();
        procedureOfAnObject(body);
        EXPECT_EQ(componentRuns(), false);
        EXPECT_EQ(std::current_exception(), nullptr);
        EXPECT_EQ(std::uncaught_exceptions(), 0);
        if (witness->reports.size() != 1)
            return std::to_string(witness->reports.size()) + " reports";
        const ErrorReport& report = witness->reports[0];
        // The failing statement is not known: the line is the procedure's.
        EXPECT_EQ(report.LineNumber, procedureLine());
        EXPECT_EQ(report.ErrorSource, "m.p" + VBLM_RTString(244) + std::to_string(procedureLine()));
        EXPECT_EQ(report.ErrorType, kErrorTypeRunTime);
        return std::to_string(report.ErrorNumber) + " " + report.ErrorDescription;
    }

    SimulatedPlatform machine;
    PlatformScope scope{machine};
    std::shared_ptr<RecordingHost> witness = std::make_shared<RecordingHost>();
};

/// A machine whose serial controls meet a fault at each output while they are told to.
class FaultyMachine final : public Platform {
public:
    class Control final : public ControlAround {
    public:
        Control(std::unique_ptr<SerialControl> line, const bool& faulty) : line_(std::move(line)), faulty_(faulty) {}
        void Output(std::string_view bytes) override
        {
            if (faulty_)
                writeNullAddress();
            ControlAround::Output(bytes);
        }

    private:
        [[nodiscard]] SerialControl& inner() const override { return *line_; }

        std::unique_ptr<SerialControl> line_;
        const bool& faulty_;
    };

    std::unique_ptr<SerialControl> newSerialControl() override
    {
        return std::make_unique<Control>(machine.newSerialControl(), faulty);
    }
    std::unique_ptr<ScanTimer> newScanTimer() override { return machine.newScanTimer(); }
    MessagePump& pump() override { return machine.pump(); }
    Registry& registry() override { return machine.registry(); }
    Screen& screen() override { return machine.screen(); }
    Process& process() override { return machine.process(); }
    OmrApiLoader& omrApiLoader() override { return machine.omrApiLoader(); }

    SimulatedPlatform machine;
    bool faulty = false;
};

/// A reader object on a machine, with a reader of Peripheral Dynamics at port 1.
struct Session {
    explicit Session(SimulatedPlatform& machine, int sheets = 1)
    {
        SimulatorOptions options;
        for (int i = 0; i < sheets; ++i)
            options.sheets.put(
                {.side1 = MarkRows(10, std::vector<Int16>(12, 1)), .side2 = {}, .barcodes = {}, .fields = {}});
        device = makeSimulator(kelReaderTypePDIVMR138, options);
        machine.attach(1, *device);
        reader.Advise(host);
        reader.LoadDefaults(kelReaderTypePDIVMR138);
        reader.Port(1);
    }

    std::unique_ptr<Simulator> device;
    clsKELReader reader;
    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
};

} // namespace kel::test
