// SPDX-License-Identifier: MIT
#pragma once

#include "strings/VBLMRTSModule.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kel {

class Control;
class Label;
class PowerEdit;
class clsKELReader;
class clsKELReaderProfile;
class frmOptions;

/// The settings on the form: what each is, what the model has by default, and what the reader itself has.
///
/// Values are compared as texts: "1" or "0" of a check box, the number of a field, the cell by which a list finds its
/// row.
class FormSettings {
public:
    explicit FormSettings(frmOptions& form);

    /// What a setting is in a sentence or two, with its range and the default of the model; empty for other controls.
    [[nodiscard]] std::string explanation(const Control& control) const;

    /// Whether the user can restore the model's default, and what it is, as the user sees it.
    [[nodiscard]] bool differs(const Control& control) const;
    [[nodiscard]] std::string standard(const Control& control) const;

    /// Sets the model's default, as if the user had chosen it.
    void reset(Control& control);

    /// Notes what the form has made of the reader's values: all of them, or one that the form itself has changed since.
    void noteLoaded();
    void noteLoaded(const Control& control);

    /// The settings that the user has not touched and that saving would change, one on each line.
    [[nodiscard]] std::string unsought() const;

    /// The sentence about a number that was not accepted as it was typed; empty if it was.
    [[nodiscard]] std::string corrected(const PowerEdit& field, const std::string& typed) const;

private:
    struct Setting {
        Control* control;
        const Control* caption; // that shows its name
        TextNumber help;
        std::function<std::string(const clsKELReaderProfile&)> standard; // null if it has no default
        std::function<std::string(const clsKELReader&)> own;
        int column = 0;      // of a list, with the texts
        bool isLine = false; // saved for serial models alone
    };

    [[nodiscard]] const Setting* find(const Control& control) const;
    [[nodiscard]] std::string value(const Setting& setting) const;
    [[nodiscard]] bool isValue(const Setting& setting, const std::string& text) const;
    [[nodiscard]] std::string shown(const Setting& setting, const std::string& text) const;
    [[nodiscard]] bool isModelChosen() const;
    [[nodiscard]] std::string standardOf(const Setting& setting) const;

    frmOptions& form_;
    std::vector<Setting> settings_;
    std::map<const Control*, std::string> loaded_;
};

} // namespace kel
