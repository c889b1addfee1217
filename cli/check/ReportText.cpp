// SPDX-License-Identifier: MIT
#include "cli/check/ReportText.h"

#include "formats/JsonValue.h"
#include "host/UsageError.h"
#include "recording/ReportSections.h"

#include <cmath>
#include <cstdio>

namespace kel {

namespace {

constexpr std::string_view kFact = "# fact: ";
constexpr std::string_view kModem = "# modem:";
constexpr std::string_view kErrors = "# errors:";
constexpr std::string_view kResult = "# result: ";
constexpr std::string_view kMasked = "# masked:";

double inTenths(double milliseconds)
{
    return std::round(milliseconds * 10) / 10;
}

CheckResult resultFrom(const std::string& text)
{
    const Json json = parseJson(text);
    const auto word = [&](const char* key) { return json.value(key, std::string()); };
    return {.stage = stageNamed(word("stage")),
            .name = word("check"),
            .status = statusNamed(word("status")),
            .expected = word("expected"),
            .seen = word("seen"),
            .milliseconds = json.value("milliseconds", 0.0),
            .advice = word("advice"),
            .cause = causeNamed(word("cause"))};
}

void takeFact(std::string_view line, CheckReport& report)
{
    const std::string_view text = line.substr(kFact.size());
    const std::size_t sign = text.find(" = ");
    if (sign != std::string_view::npos)
        report.facts.emplace_back(text.substr(0, sign), text.substr(sign + 3));
}

/// The lines of a report that a transcript takes for comments.
void takeComment(const std::string& line, CheckReport& report)
{
    if (line.starts_with(kFact)) {
        takeFact(line, report);
    } else if (line.starts_with(kResult)) {
        report.results.push_back(resultFrom(line.substr(kResult.size())));
    } else if (line.starts_with(kMasked)) {
        report.masked = true;
    } else if (line.starts_with(kModem) && !report.sections.empty()) {
        const auto has = [&](const char* wire) { return line.find(wire) != std::string::npos; };
        report.sections.back().modem =
            ModemLines{.clearToSend = has(" cts"), .dataSetReady = has(" dsr"), .carrierDetect = has(" dcd")};
    } else if (line.starts_with(kErrors) && !report.sections.empty()) {
        unsigned long long parity = 0;
        unsigned long long framing = 0;
        unsigned long long overrun = 0;
        if (std::sscanf(line.c_str(), "# errors: %llu parity, %llu framing, %llu overrun", &parity, &framing,
                        &overrun) == 3)
            report.sections.back().errors = {.parity = parity, .framing = framing, .overrun = overrun};
    }
}

} // namespace

std::string sectionLine(const std::string& name)
{
    return std::string(kSectionMark) + name + "\n";
}

std::string sectionEndLines(const Section& section)
{
    std::string lines;
    if (section.modem) {
        lines += std::string(kModem) + (section.modem->clearToSend ? " cts" : "") +
                 (section.modem->dataSetReady ? " dsr" : "") + (section.modem->carrierDetect ? " dcd" : "") + "\n";
    }
    if (section.errors.any())
        lines += "# errors: " + std::to_string(section.errors.parity) + " parity, " +
                 std::to_string(section.errors.framing) + " framing, " + std::to_string(section.errors.overrun) +
                 " overrun\n";
    return lines;
}

std::string factLine(const std::string& name, const std::string& value)
{
    return std::string(kFact) + name + " = " + value + "\n";
}

std::string resultJson(const CheckResult& result)
{
    Json json{{"stage", std::string(nameOf(result.stage))},
              {"check", jsonValue(result.name)},
              {"status", std::string(nameOf(result.status))}};
    if (!result.expected.empty())
        json["expected"] = jsonValue(result.expected);
    if (!result.seen.empty())
        json["seen"] = jsonValue(result.seen);
    if (result.milliseconds > 0)
        json["milliseconds"] = inTenths(result.milliseconds);
    if (!result.advice.empty())
        json["advice"] = jsonValue(result.advice);
    if (result.cause != Cause::None)
        json["cause"] = std::string(nameOf(result.cause));
    return jsonText(json);
}

std::string resultLine(const CheckResult& result)
{
    return std::string(kResult) + resultJson(result) + "\n";
}

CheckReport parseReport(const std::string& text, const std::string& fileName)
{
    if (!isReport(text))
        throw host::UsageError(fileName + " is not a report of 'kelreader check'; --report FILE writes one.");
    CheckReport report;
    // A file that was cut off may end in the middle of a line.
    const std::string_view whole = std::string_view(text).substr(0, text.rfind('\n') + 1);
    try {
        for (const ReportSection& part : reportSections(whole)) {
            if (part.name.empty())
                report.head = part.text;
            else
                report.sections.push_back({.name = part.name, .trace = parseTranscript(part.text)});
            for (std::size_t begin = 0; begin < part.text.size();) {
                const std::size_t end = std::min(part.text.find('\n', begin), part.text.size());
                const std::string line = part.text.substr(begin, end - begin);
                report.whole = report.whole || line + "\n" == kReportEnd;
                takeComment(line, report);
                begin = end + 1;
            }
        }
    } catch (const TranscriptError& error) {
        throw host::UsageError(fileName + " is broken: in one of its sections, " + error.what() + ".");
    } catch (const JsonRefusal& refusal) {
        throw host::UsageError(fileName + " is broken: in a result, " + refusal.what() + ".");
    } catch (const Json::exception&) {
        throw host::UsageError(fileName + " is broken: one of its results is not JSON.");
    }
    return report;
}

} // namespace kel
