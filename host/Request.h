// SPDX-License-Identifier: MIT
#pragma once

#include "formats/RegistryPath.h"
#include "host/AnswerKeyFile.h"
#include "host/Events.h"
#include "host/Form.h"
#include "host/ModelLookup.h"
#include "host/Simulation.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kel::host {

/// The print on each sheet. `{date}`, `{sheet}` and `{barcode}` in the texts stand for today's date as
/// 2024-01-31, the sheet's number and its first barcode.
struct Print {
    std::optional<std::string> print1{}; ///< the first line
    std::optional<std::string> print2{}; ///< the second
    std::optional<std::string> print3{}; ///< the third
    std::optional<Int16> distance{};     ///< where the print begins, in the model's own steps
    bool ownTexts = false;               ///< the host fills in the texts itself, in `ReadSheet`

    /// Whether anything is to be printed.
    [[nodiscard]] bool wanted() const { return print1 || print2 || print3 || distance || ownTexts; }
};

/// A model by its enumerator, its number, its name, or a part of a name that only one model has. UsageError for none
/// and for several, with the nearest names.
class Model {
public:
    /// From an enumerator, or from a text.
    Model(kelReaderType type) : type_(type) {}
    Model(std::string_view text) : type_(modelNamed(text)) {}
    Model(const std::string& text) : type_(modelNamed(text)) {}
    Model(const char* text) : type_(modelNamed(text)) {}

    /// Its number.
    operator kelReaderType() const { return type_; }

private:
    kelReaderType type_;
};

/// The task of a reader. Only the model is required.
struct Request {
    std::optional<Model> model{};           ///< without one, that of the settings
    std::optional<RegistryPath> settings{}; ///< where the settings are saved; without it the model has its defaults
    Form form{};
    std::optional<GradingKey> answerKey{};  ///< for readers that grade by themselves
    std::vector<std::string> assignments{}; ///< "Property=Value", after the model's defaults and the form
    std::optional<Int16> port{};
    std::string device{};                  ///< instead of a port: a device, or a remote line as tcp:HOST:PORT
    std::optional<Simulation> simulated{}; ///< instead of both: a simulated reader of the model
    std::filesystem::path usbLibrary{};    ///< the library of the USB readers' maker, instead of the usual one
    std::filesystem::path traceFile{};     ///< the session is recorded here, for a replay
    Int32 sheetsBefore = 0;                ///< that the batch has from earlier sessions: `{sheet}` counts on from there
    Int32 maxSheets = -1;                  ///< negative: until the feeder is empty
    bool rejectBlank = false;
    std::set<Int32> rejectSheets{}; ///< their numbers in this session, from 1
    Print print{};
};

/// The result of a scan.
struct Result {
    BatchEnd end{};                  ///< as the sink got it
    std::vector<Failure> failures{}; ///< all reports, in order
};

} // namespace kel::host
