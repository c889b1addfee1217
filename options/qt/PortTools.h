// SPDX-License-Identifier: MIT
#pragma once

#include "options/OptionsAids.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QLabel;
class QToolButton;

namespace kel {

/// The area below the line's settings: why no port can be chosen, and what can be done about it. While it exists, ports
/// are added and a test of the reader runs.
class PortTools final : public QWidget {
public:
    /// `after` runs after whatever has come or the user has done here.
    PortTools(OptionsAids& aids, std::function<void()> after, QWidget* parent);

    /// Shows what is known, and checks again while results are missing.
    void refresh();

    /// Checks the ports again; asks which device gets which port number.
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
