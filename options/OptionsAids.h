// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"

#include <string>
#include <vector>

namespace kel {

class Control;
class PowerEdit;

/// What a window may offer beyond the dialog's controls. A view may use any part of it, or none; the dialog works
/// without it.
class KEL_PUBLIC OptionsAids {
public:
    virtual ~OptionsAids() = default;

    /// Captions of what a view adds, in the user's language.
    struct Captions {
        std::string lookAgain{};  ///< a button that checks the ports again
        std::string assignPort{}; ///< a button that assigns a port number to a device
        std::string testReader{}; ///< a button that tests the reader; while it does, `stopTest`
        std::string stopTest{};
        std::string noModel{};   ///< what to do if no model is chosen
        std::string corrected{}; ///< the sentence of `corrected`, with %1 to %3 in it
        std::string unsought{};  ///< the title of a box with `unsoughtChanges`, and its buttons
        std::string save{};
        std::string back{};
    };
    /// Those captions; valid after `showPortsAsTheyCome`.
    [[nodiscard]] virtual const Captions& captions() const = 0;

    // --- The list of ports

    /// Checks all ports at the same time, in the background, and adds each to the list when it is known. Call it before
    /// `Form::Show`; the view then calls `turn` several times a second until the form is hidden. Without it, and in a
    /// process whose ports only the calling thread reaches, the form checks the ports one after another while it loads.
    virtual void showPortsAsTheyCome() = 0;

    /// Processes new results of the ports and of a test. True if the view has to show the form again.
    virtual bool turn() = 0;

    /// Whether ports are being checked. The search for the reader waits until that has ended.
    [[nodiscard]] virtual bool looksAtPorts() const = 0;

    /// Checks all ports again; the chosen one stays chosen if it still exists. Does nothing without
    /// `showPortsAsTheyCome`.
    virtual void lookAgain() = 0;
    [[nodiscard]] virtual bool canLookAgain() const = 0;

    /// Why no port can be chosen, and what to do; empty if one can.
    [[nodiscard]] virtual const std::string& portAdvice() const = 0;

    /// A device or a port number.
    struct Choice {
        std::string text{};  ///< what to show: "FT232R USB UART (/dev/ttyUSB0)", "Port 2", "Port 3 (now /dev/ttyS0)"
        std::string value{}; ///< the device, or the number
    };

    /// The serial devices that have no number, and the port numbers 1 to 16 with what each stands for.
    [[nodiscard]] virtual std::vector<Choice> devicesWithoutPort() const = 0;
    [[nodiscard]] virtual std::vector<Choice> portNumbers() const = 0;

    /// Assigns a port number to a device, and checks the ports again. A box shows what went wrong.
    virtual void assignPort(const std::string& number, const std::string& device) = 0;

    // --- The test of the reader

    /// Starts a session with the settings on the form, ends it at once, and shows the result in a box. No sheet moves,
    /// nothing is saved, and the host gets no events and no reports. The test runs in the background while the window
    /// calls `turn` until it is over; in a process whose ports only the calling thread reaches, it runs within this
    /// call.
    virtual void testReader() = 0;
    virtual void stopTest() = 0;

    /// Whether a test is possible: there is a model, and a port if it needs one. Whether one is running.
    [[nodiscard]] virtual bool canTestReader() const = 0;
    [[nodiscard]] virtual bool testsReader() const = 0;

    /// What the test is doing or, after it was stopped, that it was; empty otherwise.
    [[nodiscard]] virtual const std::string& testProgress() const = 0;

    /// Whether ports are in use here: meanwhile no other button that opens ports can be used.
    [[nodiscard]] bool usesPorts() const { return looksAtPorts() || testsReader(); }

    // --- The settings

    /// What a control is for, in a sentence or two; the range of a number and the model's default follow. Empty for
    /// labels and frames.
    [[nodiscard]] virtual std::string explanation(const Control& control) const = 0;

    /// Whether a setting that the user can change differs from the model's default; the caption of a button that
    /// restores the default; and what that button does.
    [[nodiscard]] virtual bool differs(const Control& control) const = 0;
    [[nodiscard]] virtual std::string resetCaption(const Control& control) const = 0;
    virtual void reset(Control& control) = 0;

    // --- Before the settings are saved

    /// What OK would change although the user has not touched it, a sentence and then a line for each: values that no
    /// list of the dialog has, a port that is gone. Empty if there is no such change. Waits for the ports if none is
    /// chosen yet.
    [[nodiscard]] virtual std::string unsoughtChanges() = 0;

    /// The sentence about a number that `Validate` has moved to a bound; empty if the number is as it was typed.
    [[nodiscard]] virtual std::string corrected(const PowerEdit& field, const std::string& typed) const = 0;
};

} // namespace kel
