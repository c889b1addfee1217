// SPDX-License-Identifier: MIT
#include "options/qt/GroupedRows.h"

#include <QPainter>

namespace kel {

namespace {

/// The heading above a row; empty for a row within its group.
QString headingOf(const QModelIndex& index)
{
    const QString group = index.data(GroupedRows::kGroup).toString();
    const QModelIndex above = index.siblingAtRow(index.row() - 1);
    return above.isValid() && above.data(GroupedRows::kGroup).toString() == group ? QString() : group;
}

int heightOf(const QStyleOptionViewItem& option)
{
    return option.fontMetrics.height() * 3 / 2;
}

} // namespace

void GroupedRows::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString heading = headingOf(index);
    QStyleOptionViewItem row = option;
    if (!heading.isEmpty()) {
        row.rect.setTop(option.rect.top() + heightOf(option));
        QRect above = option.rect;
        above.setBottom(row.rect.top() - 1);
        painter->save();
        QFont bold = option.font;
        bold.setBold(true);
        painter->setFont(bold);
        painter->setPen(option.palette.color(QPalette::Disabled, QPalette::Text));
        const int margin = option.fontMetrics.horizontalAdvance(' ');
        painter->drawText(above.adjusted(margin, 0, -margin, -margin / 2),
                          static_cast<int>(Qt::AlignBottom | QStyle::visualAlignment(option.direction, Qt::AlignLeft)),
                          heading);
        painter->restore();
    }
    QStyledItemDelegate::paint(painter, row, index);
}

QSize GroupedRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (!headingOf(index).isEmpty())
        size.rheight() += heightOf(option);
    return size;
}

} // namespace kel
