// SPDX-License-Identifier: MIT
#include "failure/guarded.h"

#include "failure/basError.h"

#include <string_view>

namespace kel {

void reportRuntimeFailure(const char* source, const RuntimeFailure& failure, SourceLocation procedure)
{
    ErrorReport report;
    report.LineNumber = static_cast<Int32>(lineWithin(procedure, failure.where()));
    report.ErrorNumber = failure.number();
    report.ErrorType = kErrorTypeRunTime;
    report.ErrorDescription = failure.text();
    report.ErrorSource = source;
    report.ErrorPort = failure.port().number;
    report.ErrorDevice = failure.port().device;
    report.ErrorCause = failure.port().cause;
    report.ErrorRemedy = failure.port().remedy;
    DisplayError(std::move(report));
}

unsigned lineWithin(SourceLocation procedure, const SourceLocation& failed)
{
    const bool isHere = failed.line() != 0 && failed.file_name() == std::string_view(procedure.file_name());
    return isHere ? failed.line() : procedure.line();
}

namespace detail {

void reportCaught(const char* source, SourceLocation procedure)
{
    faultCaught();
    reportRuntimeFailure(source, caughtFailure(), procedure);
}

} // namespace detail

} // namespace kel
