// SPDX-License-Identifier: MIT
#include "failure/basError.h"

#include "failure/ReportedText.h"
#include "failure/ThreadReports.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <mutex>
#include <utility>

namespace kel {

namespace {

/// The component's name with which every source begins, and which a report leaves out.
constexpr std::string_view kSourcePrefix = "KELReader81 - ";

/// The host's error object. Never destroyed by the end of the process: reports come until then, and the host's code
/// may be gone before this one.
struct RegisteredObject {
    std::mutex mutex;
    std::shared_ptr<ErrorObject> object;
};

RegisteredObject& registered()
{
    static auto* const place = new RegisteredObject;
    return *place;
}

std::string asText(const ErrorReport& report)
{
    return VBLM_RTString(text::kReportError) + CStr(report.ErrorNumber) + ": " + report.ErrorDescription +
           VBLM_RTString(text::kReportSource) + report.ErrorSource;
}

void showBox(const std::string& text)
{
    platform().screen().MsgBox(text, BoxIcon::Exclamation, BoxButtons::Ok, VBLM_RTString(text::kReportTitle));
}

void nameSource(ErrorReport& report)
{
    if (report.ErrorSource.starts_with(kSourcePrefix))
        report.ErrorSource.erase(0, kSourcePrefix.size());
    if (report.LineNumber > 0)
        report.ErrorSource += VBLM_RTString(text::kReportLine) + CStr(report.LineNumber);
}

/// Hands a report to the host's object under the report's own `Silent`, if it has one.
void raise(ErrorObject& object, const ErrorReport& report, Int16& iResult)
{
    const HostCode host;
    const Boolean bSilent = object.Silent();
    try {
        if (report.vSilent)
            object.Silent(static_cast<bool>(*report.vSilent));
        iResult = CInt(object.RaiseError(report));
    } catch (const std::exception&) {
        // The one-off value must not stay behind, even in an object that has failed.
        if (report.vSilent)
            ignoringFailures([&] { object.Silent(bSilent); });
        throw;
    }
    object.Silent(bSilent);
}

void tellThatReportFailed(const RuntimeFailure& failure, const ErrorReport& report)
{
    showBox(VBLM_RTString(text::kReportNotDelivered) + "(#" + CStr(failure.number()) + ") " + failure.text() +
            std::string(kLineEnd) + VBLM_RTString(text::kReportFirst) + asText(report));
}

} // namespace

Int16 DisplayError(ErrorReport report)
{
    Int16 iResult = 0;
    try {
        platform().screen().MousePointer(kMousePointerDefault);
        nameSource(report);
        if (const auto oError = errorObject())
            raise(*oError, report, iResult);
        else
            showBox(asText(report));
    } catch (const std::exception&) {
        const RuntimeFailure failure = caughtFailure();
        ignoringFailures([&] { tellThatReportFailed(failure, report); });
    }
    return iResult;
}

Boolean setErrorObject(std::shared_ptr<ErrorObject> object)
{
    const Boolean bSet = object != nullptr;
    const HostCode host;
    {
        const std::lock_guard lock(registered().mutex);
        registered().object.swap(object);
    }
    // The object that was registered before is let go here, outside the lock: its end may call back.
    return bSet;
}

std::shared_ptr<ErrorObject> errorObject()
{
    if (auto own = ThreadReports::taker())
        return own;
    const std::lock_guard lock(registered().mutex);
    return registered().object;
}

void reportReaderFault(const char* source, std::string text, std::string title)
{
    reportNumberedFault(source, 0, std::move(text), std::move(title));
}

void reportReaderFault(const char* source, TextNumber text, TextNumber title)
{
    const ReportedText reported(text);
    reportReaderFault(source, VBLM_RTString(text), VBLM_RTString(title));
}

void reportNumberedFault(const char* source, Int32 number, std::string text, std::string title)
{
    ErrorReport report;
    report.ErrorNumber = number;
    report.ErrorDescription = std::move(text);
    report.ErrorSource = source;
    report.ErrorTitle = std::move(title);
    DisplayError(std::move(report));
}

void reportNumberedFault(const char* source, TextNumber message, TextNumber title)
{
    const ReportedText reported(message);
    reportNumberedFault(source, message.value(), VBLM_RTString(message), VBLM_RTString(title));
}

} // namespace kel
