// SPDX-License-Identifier: MIT
#include "host/Failure.h"

#include "failure/ReportedText.h"
#include "formats/JsonValue.h"
#include "types/Text.h"

namespace kel::host {

std::string failureSentence(const Failure& failure)
{
    std::string text;
    if (!failure.title.empty())
        text += failure.title + ": ";
    // Messages for a box carry line ends and tabs of their own.
    for (const char character : failure.description) {
        const bool blank = character == '\r' || character == '\n' || character == '\t' || character == ' ';
        if (!blank)
            text += character;
        else if (!text.ends_with(' '))
            text += ' ';
    }
    text += " (";
    if (failure.number != 0)
        text += CStr(failure.number) + ", ";
    return validUtf8(text + failure.source + ")");
}

Failure failureOf(const ErrorReport& report)
{
    return {.line = report.LineNumber,
            .number = report.ErrorNumber,
            .type = report.ErrorType,
            .description = report.ErrorDescription,
            .source = report.ErrorSource,
            .title = report.ErrorTitle,
            .port = report.ErrorPort,
            .device = report.ErrorDevice,
            .cause = report.ErrorCause,
            .remedy = report.ErrorRemedy,
            .text = report.ErrorType == kErrorTypeRunTime ? 0 : ReportedText::number()};
}

ReaderFailed::ReaderFailed(std::vector<Failure> failures)
    : std::runtime_error(failureSentence(failures.front())), failures_(std::move(failures))
{
}

} // namespace kel::host
