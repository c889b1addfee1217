#include "failure/guarded.h"

#include "failure/basError.h"

namespace kel {

void reportRuntimeFailure(const char* source, const RuntimeFailure& failure)
{
    ErrorReport report;
    report.LineNumber = static_cast<Int32>(failure.where().line());
    report.ErrorNumber = failure.number();
    report.ErrorType = kErrorTypeRunTime;
    report.ErrorDescription = failure.text();
    report.ErrorSource = source;
    DisplayError(std::move(report));
}

namespace detail {

void reportCaught(const char* source)
{
    faultCaught();
    reportRuntimeFailure(source, caughtFailure());
}

} // namespace detail

} // namespace kel
