// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"

#include <string>
#include <vector>

namespace kel {

class Control;
class PowerEdit;

/// What a window offers around the dialog's controls. A view may use any of it or nothing; without it the dialog is as
/// its controls say.
class KEL_PUBLIC OptionsAids {
public:
    virtual ~OptionsAids() = default;

    /// Captions of what a view adds, in the user's language.
    struct Captions {
        std::string lookAgain{};  ///< a button that looks at the ports anew
        std::string assignPort{}; ///< a button that gives a port number to a device
        std::string testReader{}; ///< a button that tests the reader, and the same one while it does
        std::string stopTest{};
        std::string noModel{};   ///< what to do while no model is chosen
        std::string corrected{}; ///< the sentence of `corrected`, with %1 to %3 in it
        std::string unsought{};  ///< the title of a box with `unsoughtChanges`, and its buttons
        std::string save{};
        std::string back{};
    };
    /// Those captions, from `showPortsAsTheyCome` on.
    [[nodiscard]] virtual const Captions& captions() const = 0;

    // --- The list of ports

    /// Ports are looked at side by side, beside the window, and come into the list one by one. Called before
    /// `Form::Show`; the view then calls `turn` several times a second until the form is hidden. Without it, and where
    /// other threads are on another machine, the form looks at the ports one after another while it loads.
    virtual void showPortsAsTheyCome() = 0;

    /// Takes what has come since, of the ports and of a test. True if the view is to show the form anew.
    virtual bool turn() = 0;

    /// Whether ports are being looked at. The search for the reader waits until they are not.
    [[nodiscard]] virtual bool looksAtPorts() const = 0;

    /// Looks at all ports anew; the chosen one stays chosen if it is still there. Nothing happens where the ports do
    /// not come by themselves.
    virtual void lookAgain() = 0;
    [[nodiscard]] virtual bool canLookAgain() const = 0;

    /// Why no port can be chosen, and what to do; empty while there is nothing to say.
    [[nodiscard]] virtual const std::string& portAdvice() const = 0;

    /// A device or a port number.
    struct Choice {
        std::string text{};  ///< what to show: "FT232R USB UART (/dev/ttyUSB0)", "Port 2", "Port 3 (now /dev/ttyS0)"
        std::string value{}; ///< the device, or the number
    };

    /// The serial devices that have no number, and the port numbers 1 to 16 with what each stands for.
    [[nodiscard]] virtual std::vector<Choice> devicesWithoutPort() const = 0;
    [[nodiscard]] virtual std::vector<Choice> portNumbers() const = 0;

    /// Gives a number to a device, and looks at the ports anew. What goes wrong is said in a box.
    virtual void assignPort(const std::string& number, const std::string& device) = 0;

    // --- The test of the reader

    /// Starts a session with the settings on the form, ends it at once, and says in a box what came of it. No sheet
    /// moves, nothing is saved, and the host hears nothing of it. It goes on beside the window, which calls `turn`
    /// until it is over; where other threads are on another machine it is held at once.
    virtual void testReader() = 0;
    virtual void stopTest() = 0;

    /// Whether a test makes sense: there is a model, and a port if it needs one. Whether one runs.
    [[nodiscard]] virtual bool canTestReader() const = 0;
    [[nodiscard]] virtual bool testsReader() const = 0;

    /// What the test does at the moment or, after it was stopped, that it was; empty otherwise.
    [[nodiscard]] virtual const std::string& testProgress() const = 0;

    /// Whether somebody works on the ports: no other button that opens them can be worked meanwhile.
    [[nodiscard]] bool usesPorts() const { return looksAtPorts() || testsReader(); }

    // --- The settings

    /// What a control is for, in a sentence or two; the range of a number and the model's default follow. Empty for
    /// labels and frames.
    [[nodiscard]] virtual std::string explanation(const Control& control) const = 0;

    /// Whether a setting that the user can work differs from the model's default; the caption of a button that brings
    /// it back; and what that button does.
    [[nodiscard]] virtual bool differs(const Control& control) const = 0;
    [[nodiscard]] virtual std::string resetCaption(const Control& control) const = 0;
    virtual void reset(Control& control) = 0;

    // --- Before the settings are saved

    /// What OK would change although the user has not touched it, a line each below a sentence: values that no list of
    /// the dialog has, a port that is gone. Empty if there is nothing. Waits for the ports if none is chosen yet.
    [[nodiscard]] virtual std::string unsoughtChanges() = 0;

    /// The sentence about a number that `Validate` has brought within its bounds; empty if it is as it was typed.
    [[nodiscard]] virtual std::string corrected(const PowerEdit& field, const std::string& typed) const = 0;
};

} // namespace kel
