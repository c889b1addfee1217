// SPDX-License-Identifier: MIT
#include "tests/profiles/ExpectedCatalogue.h"

#include "strings/VBLMRTSModule.h"
#include "tests/profiles/ExpectedTables.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>

namespace kel::test {

namespace {

std::pair<std::string, std::vector<std::string>> splitAtColon(const std::string& row)
{
    const std::size_t colon = row.find(':');
    if (colon == std::string::npos)
        throw std::invalid_argument("no models in " + row);
    return {row.substr(0, colon), words(row.substr(colon + 1))};
}

std::string meaning(const std::string& word)
{
    if (word == "empty")
        return "";
    if (word == "None")
        return "0";
    return word == "Hardware" ? "2" : word;
}

std::string truth(bool value)
{
    return value ? "True" : "False";
}

} // namespace

ExpectedCatalogue::ExpectedCatalogue()
{
    takeRoster();
    takeShared(kSerialColumns, kSerialDefaults);
    takeShared(kThresholdColumns, kThresholds);
    takeOptions();
    takeFlags();
    takePrinters();
    for (auto& [name, model] : models_) {
        set(name, "InterfaceType", "1");
        set(name, "SleepTime", "50");
        set(name, "Timeout", "10");
    }
    for (const std::string& name : words(kUsbModels))
        models_.at(name).Record.at("InterfaceType") = "2";
    for (const std::string& name : words(kDecideNothing))
        models_.at(name).Decides = false;
    models_.at("None").Decides = false;
}

const ExpectedModel& ExpectedCatalogue::of(Int32 number) const
{
    const auto found = std::ranges::find_if(models_, [&](const auto& named) { return named.second.type() == number; });
    if (found == models_.end())
        throw std::out_of_range("the roster has no model " + std::to_string(number));
    return found->second;
}

std::vector<ExpectedModel> ExpectedCatalogue::inOrder() const
{
    std::vector<ExpectedModel> ordered;
    for (const auto& [name, model] : models_)
        ordered.push_back(model);
    std::ranges::sort(ordered, {}, &ExpectedModel::Position);
    return ordered;
}

std::vector<std::string> ExpectedCatalogue::numbersOf(const std::string& maker) const
{
    std::vector<std::string> numbers;
    for (const ExpectedModel& model : inOrder())
        if (model.Maker == maker)
            numbers.push_back(model.Number);
    return numbers;
}

void ExpectedCatalogue::takeRoster()
{
    for (const std::string& row : rows(kRoster)) {
        std::istringstream text(row);
        ExpectedModel model;
        std::string name;
        std::string readerName;
        text >> model.Position >> name >> model.Number >> model.Maker >> std::ws;
        std::getline(text, readerName);
        if (readerName == "(text 372)")
            readerName = VBLM_RTString(TextNumber(372));
        models_[name] = model;
        set(name, "ReaderType", model.Number);
        set(name, "ReaderName", readerName);
    }
}

/// Rows of values, a colon, and the models that have them.
void ExpectedCatalogue::takeShared(const std::string& columns, const std::string& table)
{
    const std::vector<std::string> properties = words(columns);
    for (const std::string& row : rows(table)) {
        const auto [left, names] = splitAtColon(row);
        const std::vector<std::string> values = words(left);
        for (const std::string& name : names)
            for (std::size_t i = 0; i < properties.size(); ++i)
                set(name, properties[i], meaning(values.at(i)));
    }
}

void ExpectedCatalogue::takeOptions()
{
    const std::vector<std::string> properties = words(kOptionColumns);
    for (const std::string& row : rows(kOptions)) {
        const std::vector<std::string> cells = words(row);
        for (std::size_t i = 0; i < properties.size(); ++i) {
            const std::string& cell = cells.at(i + 1);
            if (properties[i].ends_with("Enabled")) {
                set(cells[0], properties[i], truth(cell == "yes"));
            } else {
                set(cells[0], properties[i], truth(cell.find_first_of("+x") != std::string::npos));
                set(cells[0], properties[i] + "Enabled", truth(cell.find_first_of("ox") != std::string::npos));
                set(cells[0], properties[i] + "Visible", truth(cell.front() != '('));
            }
        }
    }
}

void ExpectedCatalogue::takeFlags()
{
    for (const std::string& row : rows(kTrueExceptFor)) {
        const auto [left, names] = splitAtColon(row);
        const std::string property = words(left).at(0);
        for (auto& [name, model] : models_)
            set(name, property, "True");
        for (const std::string& name : names)
            models_.at(name).Record.at(property) = "False";
    }
}

void ExpectedCatalogue::takePrinters()
{
    using Kind = ExpectedPrinter::Kind;
    const std::map<std::string, Kind> kinds = {
        {"optional", Kind::Optional}, {"never", Kind::Never}, {"ignored", Kind::Ignored}};
    std::set<std::string> missing;
    for (const auto& [name, model] : models_)
        missing.insert(name);
    for (const std::string& row : rows(kPrinters)) {
        const auto [left, names] = splitAtColon(row);
        const std::vector<std::string> values = words(left);
        for (const std::string& name : names) {
            if (missing.erase(name) == 0)
                throw std::logic_error("the printers have no model " + name + ", or have it twice");
            models_.at(name).Printer = {.Presence = kinds.at(values.at(0)),
                                        .Lines = static_cast<Int16>(std::stoi(values.at(1))),
                                        .MinPosition = std::stoi(values.at(2)),
                                        .MaxPosition = std::stoi(values.at(3)),
                                        .MaxCharacters = std::stoi(values.at(4))};
        }
    }
    if (!missing.empty())
        throw std::logic_error("the printers lack " + *missing.begin());
}

void ExpectedCatalogue::set(const std::string& name, const std::string& property, const std::string& value)
{
    if (!models_.at(name).Record.emplace(property, value).second)
        throw std::logic_error(name + " is told twice: " + property);
}

} // namespace kel::test
