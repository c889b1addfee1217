// SPDX-License-Identifier: MIT
#include "cli/check/ReportHead.h"

#include "cli/ThisSystem.h"
#include "host/Batch.h"
#include "host/LocalTime.h"
#include "host/Ports.h"
#include "host/TraceHead.h"
#include "recording/ReportSections.h"
#include "types/Text.h"

namespace kel {

std::string reportHead(const CheckPlan& plan, bool masked)
{
    clsKELReader reader;
    static_cast<void>(host::prepareReader(reader, plan.request));
    TraceLog::Head head = host::traceHead(plan.request, reader);
    head.emplace_back("sheets", CStr(plan.sheets));
    if (plan.formGiven)
        head.emplace_back("form-given", "true");
    if (plan.search)
        head.emplace_back("search", "true");
    if (plan.interactive)
        head.emplace_back("interactive", "true");
    if (plan.yes)
        head.emplace_back("yes", "true");
    if (masked)
        head.emplace_back("masked", "true");
    head.emplace_back("date", host::localTime("%Y-%m-%d %H:%M:%S ") + host::utcOffset());
    head.emplace_back("system", systemText());
    const std::string device = !plan.request.device.empty() ? plan.request.device
                               : plan.request.port          ? host::deviceOf(*plan.request.port).value_or("")
                                                            : "";
    if (!device.empty())
        head.emplace_back("device", device);
    std::string text = std::string(kReportMark) + "kelreader check " + KEL_VERSION + "\n";
    for (const auto& [key, value] : head)
        text += "# " + key + ": " + value + "\n";
    return text;
}

CheckPlan planOfReport(const CheckReport& report, const std::string& fileName)
{
    const Transcript head = parseTranscript(report.head);
    CheckPlan plan;
    plan.request = host::requestOfTranscript(head, report.head, fileName);
    plan.sheets = static_cast<Int32>(Val(head.value("sheets").value_or("0")));
    plan.formGiven = head.value("form-given").has_value();
    plan.search = head.value("search").has_value();
    plan.interactive = head.value("interactive").has_value();
    plan.yes = head.value("yes").has_value();
    return plan;
}

} // namespace kel
