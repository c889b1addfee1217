// SPDX-License-Identifier: MIT
#include "options/qt/FieldAccess.h"

#include "options/qt/NumberField.h"

#include <QAccessibleWidget>
#include <QLineEdit>

namespace kel {

namespace {

class FieldAccess final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit FieldAccess(NumberField& field) : QAccessibleWidget(&field, QAccessible::SpinBox), field_(field) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text which) const override
    {
        return which == QAccessible::Value ? field_.shownText() : QAccessibleWidget::text(which);
    }

    QVariant currentValue() const override { return field_.shownText().toInt(); }
    void setCurrentValue(const QVariant& value) override { field_.type(QString::number(value.toInt())); }
    QVariant minimumValue() const override { return field_.minimum(); }
    QVariant maximumValue() const override { return field_.maximum(); }
    QVariant minimumStepSize() const override { return 1; }

private:
    NumberField& field_;
};

QAccessibleInterface* fieldAccess(const QString&, QObject* object)
{
    auto* const field = dynamic_cast<NumberField*>(object);
    return field ? new FieldAccess(*field) : nullptr;
}

} // namespace

void describeNumberFields()
{
    QAccessible::installFactory(fieldAccess);
}

} // namespace kel
