// SPDX-License-Identifier: MIT
#pragma once

#include "tests/profiles/ProfileText.h"
#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <map>
#include <string>
#include <vector>

namespace kel::test {

/// The imprinter of a model, as the tables have it.
struct ExpectedPrinter {
    enum class Kind { Optional, Never, Ignored };
    Kind Presence = Kind::Ignored;
    Int16 Lines = 0;
    Int32 MinPosition = -1;
    Int32 MaxPosition = -1;
    Int32 MaxCharacters = -1;
};

/// A row of the roster with all that the tables say of its model.
struct ExpectedModel {
    Int32 Position = 0;
    std::string Number;
    std::string Maker;
    RecordText Record;
    ExpectedPrinter Printer;
    bool Decides = true; ///< on a sheet: it can be rejected

    [[nodiscard]] kelReaderType type() const { return static_cast<kelReaderType>(std::stoi(Number)); }
    [[nodiscard]] bool is(const std::string& property) const { return Record.at(property) == "True"; }
    [[nodiscard]] int number(const std::string& property) const { return std::stoi(Record.at(property)); }
};

/// What tests/profiles/ExpectedTables.h says of all models, for each of the tests that need it.
class ExpectedCatalogue {
public:
    ExpectedCatalogue();

    /// By the names that the tables have for them.
    [[nodiscard]] const std::map<std::string, ExpectedModel>& models() const& { return models_; }
    void models() && = delete;

    /// By its number; throws where no table has it.
    [[nodiscard]] const ExpectedModel& of(Int32 number) const;

    /// In the order of the roster.
    [[nodiscard]] std::vector<ExpectedModel> inOrder() const;
    [[nodiscard]] std::vector<std::string> numbersOf(const std::string& maker) const;

private:
    void takeRoster();
    void takeShared(const std::string& columns, const std::string& table);
    void takeOptions();
    void takeFlags();
    void takePrinters();
    void set(const std::string& name, const std::string& property, const std::string& value);

    std::map<std::string, ExpectedModel> models_;
};

} // namespace kel::test
