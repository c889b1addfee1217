// SPDX-License-Identifier: MIT
// What the window has around the controls of the form: explanations, resets, and a word before settings are saved.

#include "options/CaptionText.h"
#include "options/qt/OptionsWindow.h"
#include "options/qt/Utf8Text.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QMessageBox>
#include <QToolButton>
#include <QUrl>
#include <QWhatsThis>

namespace kel {

namespace {

/// A text that a tool tip breaks into lines.
QString wrapped(const QString& plain)
{
    return plain.isEmpty() ? plain : "<qt>" + plain.toHtmlEscaped() + "</qt>";
}

} // namespace

/// A label has the explanation of what it stands before.
void OptionsWindow::explain(Control& control, QWidget& widget)
{
    const auto* const label = qobject_cast<const QLabel*>(&widget);
    if (label && label->buddy()) {
        widget.setToolTip(label->buddy()->toolTip());
        widget.setWhatsThis(label->buddy()->whatsThis());
        return;
    }
    const QString explanation = text(form_.Aids().explanation(control));
    widget.setToolTip(wrapped(explanation));
    widget.setWhatsThis(wrapped(explanation));
    widget.setAccessibleDescription(explanation);
}

/// A button that is there while a setting differs from the model's default, and brings that back.
QToolButton* OptionsWindow::resetOf(Control& control)
{
    auto* const button = new QToolButton(this);
    button->setObjectName("reset_" +
                          QString::fromUtf8(control.Name().data(), static_cast<qsizetype>(control.Name().size())));
    button->setText("↺"); // a letter has the colours of the texts
    QFont bold = font();
    bold.setBold(true);
    button->setFont(bold);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    updates_.emplace_back([this, &control, button] {
        // It keeps its room beside the setting, and leaves no gap where there is none.
        QSizePolicy policy = button->sizePolicy();
        policy.setRetainSizeWhenHidden(static_cast<bool>(control.Visible()));
        button->setSizePolicy(policy);
        const bool differs = form_.Aids().differs(control);
        const QString caption = differs ? text(form_.Aids().resetCaption(control)) : QString();
        button->setToolTip(wrapped(caption));
        button->setAccessibleName(differs ? text(settingName(form_, control)) + ": " + caption : QString());
        button->setVisible(differs);
    });
    connect(button, &QToolButton::clicked, this,
            [this, &control] { act([this, &control] { form_.Aids().reset(control); }); });
    return button;
}

/// Stands where the settings of a model will be.
QLabel* OptionsWindow::noModel()
{
    auto* const label = new QLabel(this);
    label->setObjectName("noModel");
    label->setWordWrap(true);
    updates_.emplace_back([this, label] {
        label->setText(text(form_.Aids().captions().noModel));
        label->setVisible(!form_.frmReader.Seen());
    });
    return label;
}

void OptionsWindow::click(PowerButton& button)
{
    if (mayWork(form_, button, *this))
        act([&button] { button.Click(); });
}

NumberField* OptionsWindow::numberField() const
{
    return dynamic_cast<NumberField*>(focusWidget());
}

const PowerEdit* OptionsWindow::field()
{
    const NumberField* const focused = numberField();
    return focused ? &focused->edit() : nullptr;
}

bool OptionsWindow::leaveField()
{
    NumberField* const focused = numberField();
    return !focused || focused->leave();
}

void OptionsWindow::showCorrection(const std::string& sentence)
{
    notify(sentence);
    if (NumberField* const focused = numberField())
        focused->selectAll();
}

bool OptionsWindow::allows(const std::string& changes)
{
    const OptionsAids::Captions& captions = form_.Aids().captions();
    QMessageBox box(QMessageBox::Question, text(captions.unsought), text(changes), QMessageBox::NoButton, this);
    box.setTextFormat(Qt::PlainText);
    const QPushButton* const save = box.addButton(text(captions.save), QMessageBox::AcceptRole);
    QPushButton* const back = box.addButton(text(captions.back), QMessageBox::RejectRole);
    box.setDefaultButton(back);
    box.setEscapeButton(back);
    box.exec();
    return box.clickedButton() == save;
}

void OptionsWindow::notify(const std::string& sentence)
{
    notice_->setText(text(sentence));
    notice_->show();
    QAccessibleEvent alert(notice_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void OptionsWindow::explainFocus()
{
    QWidget* const widget = focusWidget();
    if (widget && !widget->whatsThis().isEmpty())
        QWhatsThis::showText(widget->mapToGlobal(widget->rect().bottomLeft()), widget->whatsThis(), widget);
}

/// The host's help or, without one, an explanation of what is clicked next.
void OptionsWindow::openHelp()
{
    if (form_.HelpFile().empty()) {
        QWhatsThis::enterWhatsThisMode();
        return;
    }
    QUrl help = QUrl::fromLocalFile(text(form_.HelpFile()));
    if (form_.HelpContextID() != 0)
        help.setFragment(QString::number(form_.HelpContextID()));
    QDesktopServices::openUrl(help);
}

} // namespace kel
