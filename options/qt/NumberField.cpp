#include "options/qt/NumberField.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace kel {

namespace {

/// Room for the digits of the largest bound.
constexpr int kDigits = 6;

std::optional<double> numberIn(const std::string& text)
{
    bool isNumber = false;
    const QString typed = QString::fromStdString(text);
    double number = typed.toDouble(&isNumber);
    if (!isNumber)
        number = QLocale().toDouble(typed, &isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

NumberField::NumberField(PowerEdit& edit, std::function<void()> after, QWidget* parent)
    : QAbstractSpinBox(parent), edit_(edit), after_(std::move(after))
{
    setFocusPolicy(Qt::StrongFocus);
    setInputMethodHints(Qt::ImhPreferNumbers);
    lineEdit()->setAlignment(Qt::AlignRight);
    connect(lineEdit(), &QLineEdit::textChanged, this, [this](const QString& text) { edit_.Text(text.toStdString()); });
}

void NumberField::refresh()
{
    const QString text = QString::fromStdString(edit_.Text());
    if (lineEdit()->text() != text)
        lineEdit()->setText(text);
    setToolTip(QString("%1 – %2").arg(edit_.Minimum()).arg(edit_.Maximum()));
    update();
}

void NumberField::leave()
{
    // An empty field is no wish for a number.
    if (!numberIn(edit_.Text()))
        edit_.Text(textOnEntry_);
    edit_.Validate();
    textOnEntry_ = edit_.Text();
    after_();
}

void NumberField::stepBy(int steps)
{
    const double number = numberIn(edit_.Text()).value_or(edit_.Minimum());
    const double wanted = std::clamp(std::trunc(number) + steps, static_cast<double>(edit_.Minimum()),
                                     static_cast<double>(edit_.Maximum()));
    edit_.Text(std::to_string(static_cast<Int32>(wanted)));
    refresh();
    lineEdit()->selectAll();
}

QAbstractSpinBox::StepEnabled NumberField::stepEnabled() const
{
    const double number = numberIn(edit_.Text()).value_or(edit_.Minimum());
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
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        leave();
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
