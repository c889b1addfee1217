// SPDX-License-Identifier: MIT
#pragma once

#include "options/Errands.h"
#include "options/ReaderTrial.h"

#include <memory>
#include <optional>
#include <string>

namespace kel {

class frmOptions;

/// The test of the reader with the settings on the form, in the background. A box shows the result.
class FormTrial {
public:
    explicit FormTrial(frmOptions& form) : form_(form) {}
    /// Stops a test that is still running, and waits until its line is closed.
    ~FormTrial();
    FormTrial(const FormTrial&) = delete;
    FormTrial& operator=(const FormTrial&) = delete;

    /// Whether there is a model, and a port if it needs one.
    [[nodiscard]] bool isPossible() const;

    /// Starts a test on a thread of its own, or runs it within this call if other threads do not share the machine's
    /// lines.
    void start(bool sharesMachine);
    void stop();
    [[nodiscard]] bool isRunning() const { return trial_ != nullptr; }

    /// What the test is doing or, after it was stopped, that it was; empty otherwise.
    [[nodiscard]] const std::string& progress() const { return progress_; }

    /// Processes new results, and shows the box. True if there is anything new.
    bool turn();

private:
    [[nodiscard]] std::shared_ptr<ReaderTrial> ofForm(bool sharesMachine) const;
    void show(const ReaderTrial::Outcome& outcome);

    frmOptions& form_;
    std::shared_ptr<ReaderTrial> trial_;
    std::optional<ReaderTrial::Outcome> outcome_;
    std::string progress_;
    std::optional<Errands> errand_; // destroyed first
};

} // namespace kel
