// SPDX-License-Identifier: MIT
#include "cli/check/CheckOutput.h"

#include "cli/check/ReportText.h"
#include "formats/Columns.h"
#include "formats/JsonValue.h"

#include <cmath>

namespace kel {

namespace {

constexpr std::size_t kStatusWidth = 16;
constexpr std::size_t kNameWidth = 42;

std::string timeText(double milliseconds)
{
    constexpr double kSecond = 1000;
    if (milliseconds < 1)
        return {};
    if (milliseconds < kSecond)
        return std::to_string(std::lround(milliseconds)) + " ms";
    const long tenths = std::lround(milliseconds / kSecond * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

} // namespace

std::string tableText(const CheckResult& result)
{
    std::string line = "  " + padded(std::string(nameOf(result.status)), kStatusWidth);
    std::string seen = result.seen;
    const bool wrong = result.status == CheckStatus::Fail || result.status == CheckStatus::Warn;
    if (wrong && !result.expected.empty())
        seen = (seen.empty() ? "nothing" : seen) + ", expected " + result.expected;
    const std::string time = timeText(result.milliseconds);
    if (!time.empty())
        seen += (seen.empty() ? "" : ", ") + time;
    line += seen.empty() ? result.name : padded(result.name, kNameWidth) + "  " + seen;
    line += "\n";
    const std::string advice = result.advice.empty() && wrong && result.cause != Cause::None
                                   ? std::string(entryOf(result.cause).advice)
                                   : result.advice;
    if (!advice.empty())
        line += "  " + std::string(kStatusWidth, ' ') + advice + "\n";
    return line;
}

std::string tableText(const Verdict& verdict)
{
    return "\n" + verdict.sentence + "\n" + (verdict.advice.empty() ? "" : verdict.advice + "\n");
}

std::string verdictJson(const Verdict& verdict)
{
    Json json{{"event", "verdict"}, {"usable", verdict.usable}, {"sentence", jsonValue(verdict.sentence)}};
    if (verdict.cause != Cause::None)
        json["cause"] = std::string(nameOf(verdict.cause));
    if (!verdict.advice.empty())
        json["advice"] = jsonValue(verdict.advice);
    return jsonText(json);
}

void CheckOutput::result(const CheckResult& result)
{
    if (json_) {
        const std::string text = resultJson(result);
        output_.write("{\"event\":\"check\"," + text.substr(1) + "\n");
        return;
    }
    std::string text;
    if (!begun_ || result.stage != stage_)
        text = std::string(begun_ ? "\n" : "") + std::string(nameOf(result.stage)) + "\n";
    begun_ = true;
    stage_ = result.stage;
    output_.write(text + tableText(result));
}

void CheckOutput::verdict(const Verdict& verdict)
{
    output_.write(json_ ? verdictJson(verdict) + "\n" : tableText(verdict));
}

} // namespace kel
