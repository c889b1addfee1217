// SPDX-License-Identifier: MIT
#pragma once

#include "cli/JsonLines.h"
#include "host/Batch.h"
#include "simulators/SimulatorTable.h"

#include <functional>
#include <string>
#include <vector>

namespace kel::test {

/// A model of each family that speaks over a line, and of each kind of dialogue, with the width of its sheets: no more
/// than the dialogue needs, since each byte is tried.
struct SweptModel {
    const char* name;
    kelReaderType type;
    Int16 columns = 12;
};

inline constexpr SweptModel kSweptModels[] = {
    {"PeripheralDynamics", kelReaderTypePDIVMR138},
    {"Scantron", kelReaderTypeScantronScanMark2500, 48}, // the reader sends the whole width, whatever the form is
    {"ScanningSystems", kelReaderTypeScanningSystemsSR601},
    {"Ncs", kelReaderTypeNCSOpScan5},
    {"EZData", kelReaderTypeNCSEZData},
    {"Chatsworth", kelReaderTypeChatsworthALSAccelScanOMR},
    {"AppersonMarks", kelReaderTypeAppersonGradeMaster},
    {"AppersonLines", kelReaderTypeAppersonBenchMark3000},
};

inline std::string nameOf(const SweptModel& model)
{
    return model.name;
}

/// Two small sheets with a simulated reader.
class ShortSession {
public:
    static constexpr Int32 kSheets = 2;

    explicit ShortSession(const SweptModel& model, std::vector<std::string> assignments = {}) : model_(model)
    {
        request_.model = model.type;
        request_.port = Int16{1};
        request_.maxSheets = kSheets;
        request_.form.side1Rows = {kRows};
        request_.form.side1Cols = {model.columns};
        request_.form.side2Rows = {0};
        request_.form.side2Cols = {0};
        request_.assignments = std::move(assignments);
    }

    [[nodiscard]] std::unique_ptr<Simulator> device(std::vector<Fault> faults = {}) const
    {
        SimulatorOptions options{.model = model_.type, .rate = Rate::Unlimited, .faults = std::move(faults)};
        options.seeded = SeededSheets{7, kSheets};
        options.form = {.side1Rows = {kRows}, .side1Cols = {model_.columns}, .side2Rows = {0}, .side2Cols = {0}};
        return makeSimulator(model_.type, std::move(options));
    }

    /// Sets a reader up for the session, on the platform that is in use.
    void prepare(clsKELReader& reader) const { host::prepareReader(reader, request_); }

    /// Reads the batch on the platform that is in use; the lines that the command would write.
    [[nodiscard]] std::vector<std::string> scan(const std::function<bool()>& stopWanted) const
    {
        std::vector<std::string> lines;
        JsonLines sink([&](const std::string& line) { lines.push_back(line); });
        clsKELReader reader;
        prepare(reader);
        static_cast<void>(host::runScan(reader, request_, sink, stopWanted));
        return lines;
    }

private:
    static constexpr Int16 kRows = 4;

    SweptModel model_;
    host::Request request_;
};

} // namespace kel::test
