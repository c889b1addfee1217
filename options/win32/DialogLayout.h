// SPDX-License-Identifier: MIT
#pragma once

#include "options/frmOptions.h"

#include <map>

namespace kel {

/// Where a control stands in the window, in twips.
struct Place {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};

/// What the window system gives the layout to go by, in twips.
struct DialogMetrics {
    double line = 0;        ///< height of a line of text
    double titleLine = 0;   ///< the same of the title's typeface, which is larger
    double titleScale = 1;  ///< how much larger
    double tick = 0;        ///< width of a check box without its text
    double arrow = 0;       ///< width of the arrow of a list, and of the spin buttons
    double fieldHeight = 0; ///< height of a list or a number field
};

/// The places of all controls of the form, so that nothing of any text is cut off. Rows of hidden controls leave no
/// gap, and yet the window's size is that of all rows: it stays when another model is chosen.
struct DialogLayout {
    std::map<const Control*, Place> places;
    std::map<const Control*, Place> resets; ///< of the buttons that bring back a setting's default
    Place lookAgain;         ///< under the settings of the line: the button for another look at the ports
    Place assignPort;        ///< the one that gives a number to a device
    Place portAdvice;        ///< why no port can be chosen
    Place noModel;           ///< where the settings of a model will be: what to do
    Place testReader;        ///< the button beside OK
    Place notice;            ///< between the buttons: what was corrected
    double headerHeight = 0; ///< of the band at the top
    double bottomLine = 0;   ///< where the line above the buttons runs
    double width = 0;        ///< of the window's inside
    double height = 0;
};

[[nodiscard]] DialogLayout dialogLayout(frmOptions& form, const DialogMetrics& metrics);

} // namespace kel
