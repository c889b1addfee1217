// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/CheckRun.h"
#include "cli/check/Verdict.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <memory>
#include <string>
#include <vector>

namespace kel::test {

/// An operator who does what he is told and confirms everything, unless he is told otherwise.
class WillingOperator final : public Operator {
public:
    [[nodiscard]] bool doThis(const std::string& what) override
    {
        asked.push_back(what);
        return !leaves;
    }
    [[nodiscard]] bool confirms(const std::string& question) override
    {
        asked.push_back(question);
        return !denies;
    }
    void tell(const std::string& what) override { told.push_back(what); }

    bool leaves = false;
    bool denies = false;
    std::vector<std::string> asked;
    std::vector<std::string> told;
};

/// The plan of a check with a search and three sheets; with a feeder where the model may have one.
[[nodiscard]] CheckPlan fullPlan(kelReaderType model);

/// What came of a check under the virtual clock.
struct VirtualOutcome {
    CheckResults results;
    Verdict verdict;
    std::string report; ///< as it was written, without the head
    Moment took{};      ///< of virtual time
    Moment tookBeforeSheets{};
    std::vector<SheetRecord> logBeforeSheets;
    std::string sentBeforeSheets;    ///< all that the host had sent by then
    std::vector<std::string> errors; ///< what the host did wrongly to the reader
};

struct VirtualOptions {
    std::vector<std::string> faults{};
    std::optional<CheckPlan> plan{};
    std::function<bool()> stopWanted{};
    PortState port = PortState::Present;
    WillingOperator* person = nullptr;
};

/// Checks a simulated reader with a line. Its feeder holds as many copies of one sheet as the plan asks for.
[[nodiscard]] VirtualOutcome checkVirtually(kelReaderType model, const VirtualOptions& options = {});

/// All models of the catalogue, those with a line or those without.
[[nodiscard]] std::vector<kelReaderType> modelsOfCatalogue(bool usb);

/// The faults of a family's table, as `--fault` takes them.
[[nodiscard]] std::vector<std::string> faultsOf(SimulatedFamily family);

/// A model for each family, the one that stands for it in the table of faults.
[[nodiscard]] kelReaderType representative(SimulatedFamily family);

} // namespace kel::test
