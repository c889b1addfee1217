// SPDX-License-Identifier: MIT
#include "options/qt/GroupedRows.h"

#include <QPainter>

namespace kel {

namespace {

QString headingAbove(const QModelIndex& index)
{
    return index.data(GroupedRows::kHeading).toString();
}

int heightOf(const QStyleOptionViewItem& option)
{
    return option.fontMetrics.height() * 3 / 2;
}

} // namespace

void GroupedRows::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString heading = headingAbove(index);
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
    if (!headingAbove(index).isEmpty())
        size.rheight() += heightOf(option);
    return size;
}

} // namespace kel
