// SPDX-License-Identifier: MIT
#pragma once

#include "options/OptionsAids.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QLabel;
class QToolButton;

namespace kel {

/// What stands under the settings of the line: why no port can be chosen, and what can be done about it. Ports come,
/// and a test of the reader goes on, as long as it is there.
class PortTools final : public QWidget {
public:
    /// `after` runs after whatever has come or the user has done here.
    PortTools(OptionsAids& aids, std::function<void()> after, QWidget* parent);

    /// Shows what is known by now, and goes on looking while there is something to come.
    void refresh();

    /// Looks at the ports anew, and asks which device is to have which number.
    void lookAgain();

private:
    void fillMenu();

    OptionsAids& aids_;
    std::function<void()> after_;
    QLabel* advice_;
    QToolButton* look_;
    QToolButton* assign_;
    QTimer turns_;
};

} // namespace kel
