// SPDX-License-Identifier: MIT
#pragma once

#include "options/Errands.h"
#include "options/FormSettings.h"
#include "options/FormTrial.h"
#include "options/OptionsAids.h"
#include "platform/PortLook.h"
#include "platform/SerialDevices.h"

#include <map>
#include <optional>

namespace kel {

class frmOptions;

/// The aids of the form itself.
class FormAids final : public OptionsAids {
public:
    explicit FormAids(frmOptions& form);

    /// Starts checking the ports, if that runs in the background; `wanted` is chosen when it is known.
    [[nodiscard]] bool beginsToLook(Int16 wanted);

    /// Notes that the form shows the reader's values.
    void noteLoaded();

    /// Waits until all ports have been checked.
    void endLook();

    [[nodiscard]] const Captions& captions() const override { return captions_; }
    void showPortsAsTheyCome() override;
    bool turn() override;
    [[nodiscard]] bool looksAtPorts() const override { return looks_ && !looks_->isIdle(); }
    void lookAgain() override;
    [[nodiscard]] bool canLookAgain() const override { return comesBeside_; }
    [[nodiscard]] const std::string& portAdvice() const override { return portAdvice_; }
    [[nodiscard]] std::vector<Choice> devicesWithoutPort() const override;
    [[nodiscard]] std::vector<Choice> portNumbers() const override;
    void assignPort(const std::string& number, const std::string& device) override;
    void testReader() override;
    void stopTest() override { trial_.stop(); }
    [[nodiscard]] bool canTestReader() const override { return !usesPorts() && trial_.isPossible(); }
    [[nodiscard]] bool testsReader() const override { return trial_.isRunning(); }
    [[nodiscard]] const std::string& testProgress() const override { return trial_.progress(); }
    [[nodiscard]] std::string explanation(const Control& control) const override
    {
        return settings_.explanation(control);
    }
    [[nodiscard]] bool differs(const Control& control) const override { return settings_.differs(control); }
    [[nodiscard]] std::string resetCaption(const Control& control) const override;
    void reset(Control& control) override { settings_.reset(control); }
    [[nodiscard]] std::string unsoughtChanges() override;
    [[nodiscard]] std::string corrected(const PowerEdit& field, const std::string& typed) const override
    {
        return settings_.corrected(field, typed);
    }

private:
    void look();
    void showPorts();
    void advise();
    void groupModels();
    [[nodiscard]] std::string nameOf(const std::string& device) const;
    [[nodiscard]] std::string portLine(Int16 port) const;

    frmOptions& form_;
    const bool sharesMachine_;
    bool comesBeside_ = false;
    FormSettings settings_;
    Captions captions_;
    std::string prompt_; // of the list when nothing is being looked at
    std::string portAdvice_;
    std::string wantedPort_;
    std::map<Int16, std::string> devices_; // of all numbers that have one
    std::map<Int16, PortLook> found_;      // of those that have been looked at
    std::vector<SerialDevice> serialDevices_;
    FormTrial trial_;
    std::optional<Errands> looks_; // goes first
};

} // namespace kel
