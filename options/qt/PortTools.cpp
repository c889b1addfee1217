// SPDX-License-Identifier: MIT
#include "options/qt/PortTools.h"
#include "options/qt/Utf8Text.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace kel {

namespace {

/// How often what has come meanwhile is taken.
constexpr auto kTurn = std::chrono::milliseconds(40);

/// A text of others' in a menu: an ampersand is one.
QString literal(const std::string& utf8)
{
    return text(utf8).replace("&", "&&");
}

} // namespace

PortTools::PortTools(OptionsAids& aids, std::function<void()> after, QWidget* parent)
    : QWidget(parent), aids_(aids), after_(std::move(after)), advice_(new QLabel(this)), look_(new QToolButton(this)),
      assign_(new QToolButton(this))
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, fontMetrics().height() / 2, 0, 0);
    advice_->setObjectName("portAdvice");
    advice_->setWordWrap(true);
    column->addWidget(advice_);
    auto* const row = new QHBoxLayout;
    for (QToolButton* const button : {look_, assign_}) {
        button->setFocusPolicy(Qt::StrongFocus);
        row->addWidget(button);
    }
    row->addStretch(1);
    column->addLayout(row);
    look_->setObjectName("lookAgain");
    look_->setShortcut(QKeySequence::Refresh);
    look_->setToolTip(look_->shortcut().toString(QKeySequence::NativeText));
    connect(look_, &QToolButton::clicked, this, [this] { lookAgain(); });
    assign_->setObjectName("assignPort");
    assign_->setPopupMode(QToolButton::InstantPopup);
    assign_->setMenu(new QMenu(assign_));
    connect(assign_->menu(), &QMenu::aboutToShow, this, [this] { fillMenu(); });

    turns_.setInterval(kTurn);
    connect(&turns_, &QTimer::timeout, this, [this] {
        const bool isNew = aids_.turn();
        if (!aids_.usesPorts())
            turns_.stop();
        if (isNew)
            after_();
    });
}

void PortTools::refresh()
{
    const OptionsAids::Captions& captions = aids_.captions();
    setVisible(aids_.canLookAgain());
    advice_->setText(text(aids_.portAdvice()));
    advice_->setVisible(!aids_.portAdvice().empty());
    look_->setText(text(captions.lookAgain));
    // The key would be lost with a new text.
    look_->setShortcut(QKeySequence::Refresh);
    look_->setEnabled(!aids_.usesPorts());
    assign_->setText(text(captions.assignPort));
    assign_->setEnabled(!aids_.usesPorts() && !aids_.devicesWithoutPort().empty());
    if (aids_.usesPorts() && !turns_.isActive())
        turns_.start();
}

void PortTools::lookAgain()
{
    aids_.lookAgain();
    after_();
}

/// A menu of the devices without a number, with the numbers of each.
void PortTools::fillMenu()
{
    QMenu* const menu = assign_->menu();
    menu->clear();
    const std::vector<OptionsAids::Choice> numbers = aids_.portNumbers();
    for (const OptionsAids::Choice& device : aids_.devicesWithoutPort()) {
        QMenu* const ports = menu->addMenu(literal(device.text));
        for (const OptionsAids::Choice& number : numbers) {
            connect(ports->addAction(literal(number.text)), &QAction::triggered, this, [this, device, number] {
                aids_.assignPort(number.value, device.value);
                after_();
            });
        }
    }
}

} // namespace kel
