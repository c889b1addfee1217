#pragma once

#include "cli/JsonValue.h"
#include "failure/ErrorReport.h"
#include "types/Arrays.h"
#include "types/Numbers.h"

#include <optional>
#include <string>

namespace kel {

/// A sheet that was read and decided on.
struct ScannedSheet {
    Int32 sheet = 0; ///< counted from 1
    MarkArray side1;
    MarkArray side2;
    Int16 side1TimingMarks = -1;
    Int16 side2TimingMarks = -1;
    TextArray barcodes;
    bool rejected = false;
    bool printed = false;
    std::optional<Json> record; ///< the named fields, from readers that deliver such
};

/// A report as it reached the host's error object.
struct ReportedFailure {
    Int32 line = 0;
    Int32 number = 0;
    Int32 type = 0;
    std::string description;
    std::string source;
    std::string title;
};

/// A report as the scan tells it.
[[nodiscard]] inline ReportedFailure reportedFailure(const ErrorReport& report)
{
    return {report.LineNumber,       report.ErrorNumber, report.ErrorType,
            report.ErrorDescription, report.ErrorSource, report.ErrorTitle};
}

/// The end of a batch.
struct BatchEnd {
    bool started = false;
    Int32 sheets = 0;
    bool cancelScan = false;
    bool result = false;
};

/// Where the events of a scan go, in the order in which they happen.
class ScanSink {
public:
    virtual ~ScanSink() = default;
    virtual void sheet(const ScannedSheet& event) = 0;
    virtual void failure(const ReportedFailure& event) = 0;
    virtual void end(const BatchEnd& event) = 0;
};

} // namespace kel
