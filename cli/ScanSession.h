#pragma once

#include "cli/AnswerKeyFile.h"
#include "cli/FormFile.h"
#include "cli/ScanEvents.h"
#include "formats/RegistryPath.h"
#include "reader/clsKELReader.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kel {

/// What is printed on each sheet. `{date}`, `{sheet}` and `{barcode}` in the texts stand for today's date as
/// 2024-01-31, the sheet's number and its first barcode.
struct PrintRequest {
    std::optional<std::string> print1;
    std::optional<std::string> print2;
    std::optional<std::string> print3;
    std::optional<Int16> distance;

    [[nodiscard]] bool wanted() const { return print1 || print2 || print3 || distance; }
};

/// What to do with a reader.
struct ScanRequest {
    std::optional<kelReaderType> model;   ///< without one it is that of the settings
    std::optional<RegistryPath> settings; ///< where the settings are kept; without it the model has its defaults
    ScanForm form;
    std::optional<ScanAnswerKey> answerKey; ///< for readers that grade by themselves
    std::vector<std::string> assignments;   ///< "Property=Value", behind the model's defaults and the form
    std::optional<Int16> port;
    Int32 maxSheets = -1;
    bool rejectBlank = false;
    std::set<Int32> rejectSheets;
    PrintRequest print;
};

/// How a scan came out.
struct ScanResult {
    BatchEnd end;
    std::vector<ReportedFailure> failures;
};

/// Gives a reader the kept settings or the defaults of the model, the form, the answer key, the port, the assignments
/// and the print settings, and tells which of the kept settings failed. UsageError for an assignment
/// that is wrong and for a text that cannot be printed.
std::vector<ReportedFailure> prepareReader(clsKELReader& reader, const ScanRequest& request);

/// Reads a batch with a reader that is prepared, and tells the sink of all that happens. While it runs, the reports of
/// the whole process go to the sink, and `stopWanted` is asked now and then: once it says true, `CancelScan` is set.
[[nodiscard]] ScanResult runScan(clsKELReader& reader, const ScanRequest& request, ScanSink& sink,
                                 const std::function<bool()>& stopWanted = {});

/// A print text with its placeholders filled in.
[[nodiscard]] std::string filledIn(std::string text, Int32 sheet, const std::string& barcode);

} // namespace kel
