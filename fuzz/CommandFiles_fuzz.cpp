// SPDX-License-Identifier: MIT
#include "cli/UsageError.h"
#include "drivers/apperson/KeyEncoding.h"
#include "formats/JsonValue.h"
#include "fuzz/Input.h"
#include "host/AnswerKeyFile.h"
#include "host/Form.h"
#include "simulators/framework/SheetFeeder.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <cstddef>
#include <string>

using namespace kel;

// The JSON files that the command is given, and that people write: forms, answer keys, sheets. What does not fit is
// refused with one sentence; what was taken fits.

namespace {

void demandSentence(const std::string& text)
{
    demand(text.ends_with('.') && text == validUtf8(text), "a refusal is a sentence in UTF-8");
    demand(text.find('\n') == std::string::npos, "a refusal is one line");
}

void takeForm(std::string_view text)
{
    const host::Form form = host::parseForm(text, "form");
    for (const auto* sizes : {&form.side1Rows, &form.side1Cols, &form.side2Rows, &form.side2Cols}) {
        for (const Int16 size : sizes->value_or(std::vector<Int16>()))
            demand(size >= 0, "a size is not below zero");
    }
    const host::Form again = host::parseForm(host::sizesText(form), "form");
    demand(again.side1Rows == form.side1Rows && again.side2Cols == form.side2Cols,
           "sizes are written as they are read");
    for (const host::Field& field : form.fields) {
        demand(!field.name.empty() && !field.cells.empty(), "a field has a name and cells");
        demand(field.labels.size() == field.cells.size() || (field.labels.empty() && field.cells.size() == 1),
               "a field has a label a cell");
    }
    demand(host::rowOf(form.fields, {}).size() == host::columnsOf(form.fields).size(), "a row has all columns");
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    host::applyForm(form, reader);
    demand(reader.Windows()->Count() == static_cast<Int32>(form.windows.size()), "all windows are there");
    demand(reader.Barcodes()->Count() == static_cast<Int32>(form.barcodes.size()), "all zones are there");
    demand(machine.screen().boxes().empty(), "a form that was taken is a form");
}

/// A key that was taken can be sent to either of the readers that store one.
void takeKey(std::string_view text)
{
    const host::GradingKey answers = host::parseAnswerKey(text, "key");
    demand(answers.questionsOn(0) == 0, "pages are counted from 1");
    for (const AnswerCodeAP code : {AnswerCodeAP::Digits, AnswerCodeAP::Mask}) {
        EncodedKeyAP key;
        encodeKeyAP(
            *answers.key, [&] { return code; }, key);
        demand(key.sEssayScore.size() <= 4, "an essay has four digits");
        if (answers.questionsOn(1) > 0 && needsSimplexKeyAP(key, answers.questionsOn(1)))
            cutToFirstPageAP(key, answers.questionsOn(1));
        for (const std::string& sKey : key.sKeyStrArr.elements())
            static_cast<void>(keyPiecesAP(sKey));
    }
}

void takeSheets(std::string_view text)
{
    SheetFeeder feeder = SheetFeeder::fromJson(text);
    std::vector<SimulatedSheet> sheets;
    while (!feeder.empty())
        sheets.push_back(feeder.take());
    feeder = SheetFeeder::fromJson(toJson(sheets));
    for (const SimulatedSheet& sheet : sheets)
        demand(feeder.take() == sheet, "sheets are written as they are read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view text = Input(data + 1, size - 1).text();
    try {
        switch (data[0] % 3) {
        case 0: takeForm(text); break;
        case 1: takeKey(text); break;
        default: takeSheets(text); break;
        }
    } catch (const host::UsageError& error) {
        demandSentence(error.what());
    } catch (const JsonRefusal& refusal) {
        demand(data[0] % 3 == 2 && !refusal.complaint().empty(), "sheets are refused as JSON");
    }
    return 0;
}
