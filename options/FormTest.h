// SPDX-License-Identifier: MIT
#pragma once

#include "options/Errands.h"
#include "options/ReaderTest.h"

#include <memory>
#include <optional>
#include <string>

namespace kel {

class frmOptions;

/// The test of the reader with the settings on the form, beside the window. What came of it is said in a box.
class FormTest {
public:
    explicit FormTest(frmOptions& form) : form_(form) {}
    /// A test that still runs is stopped; its line is closed then.
    ~FormTest();
    FormTest(const FormTest&) = delete;
    FormTest& operator=(const FormTest&) = delete;

    /// Whether there is a model, and a port if it needs one.
    [[nodiscard]] bool isPossible() const;

    /// Starts one on a thread of its own or, where that would be on another machine, holds it here.
    void start(bool sharesMachine);
    void stop();
    [[nodiscard]] bool isRunning() const { return test_ != nullptr; }

    /// What it does; after it was stopped, that it was. Empty otherwise.
    [[nodiscard]] const std::string& progress() const { return progress_; }

    /// Takes what has come since, and shows the box. True if there is anything new.
    bool turn();

private:
    [[nodiscard]] std::shared_ptr<ReaderTest> ofForm(bool sharesMachine) const;
    void tell(const ReaderTest::Outcome& outcome);

    frmOptions& form_;
    std::shared_ptr<ReaderTest> test_;
    std::optional<ReaderTest::Outcome> outcome_;
    std::string progress_;
    std::optional<Errands> errand_; // goes first
};

} // namespace kel
