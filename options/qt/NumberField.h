// SPDX-License-Identifier: MIT
#pragma once

#include "options/Controls.h"

#include <QAbstractSpinBox>

#include <functional>

namespace kel {

/// A number field of the form as a spin box. It shows the text that the model has, whatever the bounds; the model
/// corrects it.
class NumberField final : public QAbstractSpinBox {
public:
    /// `after` runs after whatever the user has done here.
    NumberField(PowerEdit& edit, std::function<void()> after, QWidget* parent);

    /// Shows the model's text, bounds and selection.
    void refresh();

    /// What leaving the field does; for a default button that works while the field keeps the focus. False, after a
    /// message to the user, if its text is not a number.
    [[nodiscard]] bool leave();

    /// The field of the form.
    [[nodiscard]] const PowerEdit& edit() const { return edit_; }

    /// The text in the field, the bounds, and another text as if it were typed and the field left; for programs that
    /// assist the user.
    [[nodiscard]] QString shownText() const { return text(); }
    [[nodiscard]] int minimum() const { return edit_.Minimum(); }
    [[nodiscard]] int maximum() const { return edit_.Maximum(); }
    void type(const QString& text);

    void stepBy(int steps) override;
    QValidator::State validate(QString&, int&) const override { return QValidator::Acceptable; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    PowerEdit& edit_;
    std::function<void()> after_;
    std::string textOnEntry_;
};

} // namespace kel
