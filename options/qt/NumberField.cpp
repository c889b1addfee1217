// SPDX-License-Identifier: MIT
#include "options/qt/NumberField.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QTimer>

#include <utility>

namespace kel {

namespace {

/// Room for the digits of the largest bound.
constexpr int kDigits = 6;

} // namespace

NumberField::NumberField(PowerEdit& edit, std::function<void()> after, QWidget* parent)
    : QAbstractSpinBox(parent), edit_(edit), after_(std::move(after))
{
    setFocusPolicy(Qt::StrongFocus);
    setInputMethodHints(Qt::ImhPreferNumbers);
    // A few digits need no menu, and Qt's own is in English.
    setContextMenuPolicy(Qt::NoContextMenu);
    lineEdit()->setContextMenuPolicy(Qt::NoContextMenu);
    lineEdit()->setAlignment(Qt::AlignRight);
    connect(lineEdit(), &QLineEdit::textChanged, this, [this](const QString& text) { edit_.Text(text.toStdString()); });
}

void NumberField::refresh()
{
    const QString text = QString::fromStdString(edit_.Text());
    if (lineEdit()->text() != text) {
        lineEdit()->setText(text);
        QAccessibleValueChangeEvent changed(this, text.toInt());
        QAccessible::updateAccessibility(&changed);
    }
    update();
}

bool NumberField::leave()
{
    // An empty field does not ask for a number.
    if (lineEdit()->text().trimmed().isEmpty())
        edit_.Text(textOnEntry_);
    edit_.Validate();
    const bool isNumber = edit_.Number().has_value();
    if (isNumber)
        textOnEntry_ = edit_.Text();
    after_();
    return isNumber;
}

void NumberField::type(const QString& text)
{
    lineEdit()->setText(text);
    static_cast<void>(leave());
}

/// Page Up and the control key would make ten steps of one.
void NumberField::stepBy(int steps)
{
    if (steps > 0)
        edit_.StepUp();
    else
        edit_.StepDown();
    refresh();
    lineEdit()->selectAll();
}

QAbstractSpinBox::StepEnabled NumberField::stepEnabled() const
{
    const double number = edit_.Number().value_or(edit_.Minimum());
    StepEnabled steps = StepNone;
    if (number < edit_.Maximum())
        steps |= StepUpEnabled;
    if (number > edit_.Minimum())
        steps |= StepDownEnabled;
    return steps;
}

QSize NumberField::sizeHint() const
{
    ensurePolished();
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const QSize content(fontMetrics().horizontalAdvance(QString(kDigits, '8')) + 2, lineEdit()->sizeHint().height());
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, content, this);
}

void NumberField::focusInEvent(QFocusEvent* event)
{
    QAbstractSpinBox::focusInEvent(event);
    if (event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason)
        return;
    if (edit_.Number())
        textOnEntry_ = edit_.Text();
    edit_.GotFocus();
    // A click places the cursor after this; the selection comes last.
    QTimer::singleShot(0, this, [this] {
        const Int32 length = edit_.SelectionLength();
        lineEdit()->setSelection(edit_.SelectionStart(),
                                 length < 0 ? static_cast<int>(lineEdit()->text().size()) : static_cast<int>(length));
    });
}

void NumberField::focusOutEvent(QFocusEvent* event)
{
    QAbstractSpinBox::focusOutEvent(event);
    // Another window, or a menu of this field: the user comes back to it.
    if (event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason)
        return;
    if (edit_.Number() || lineEdit()->text().trimmed().isEmpty()) {
        static_cast<void>(leave());
        return;
    }
    // The message about what is no number waits until the focus has arrived where it goes. Nobody who goes to Cancel
    // wants it.
    QTimer::singleShot(0, this, [this] {
        const auto* const next = qobject_cast<const QWidget*>(window()->focusWidget());
        if (hasFocus() || (next && next->objectName() == "cmdCancel"))
            return;
        static_cast<void>(leave());
        setFocus();
    });
}

void NumberField::keyPressEvent(QKeyEvent* event)
{
    const QString typed = event->text();
    const bool isShortcut = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    if (!isShortcut && typed.size() == 1 && typed.front().isPrint()) {
        const ushort code = typed.front().unicode();
        // A character beyond the narrow ones is a letter of some kind.
        if (edit_.KeyPress(code < 0x100 ? static_cast<Int16>(code) : Int16{0xFF}) == 0)
            return;
    }
    QAbstractSpinBox::keyPressEvent(event);
}

void NumberField::wheelEvent(QWheelEvent* event)
{
    // The wheel is for scrolling past, unless the user is here.
    if (hasFocus())
        QAbstractSpinBox::wheelEvent(event);
    else
        event->ignore();
}

} // namespace kel
