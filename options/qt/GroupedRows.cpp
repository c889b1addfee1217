// SPDX-License-Identifier: MIT
#include "options/qt/GroupedRows.h"

#include <QPainter>

namespace kel {

namespace {

QString headingAbove(const QModelIndex& index)
{
    return index.data(GroupedRows::kHeading).toString();
}

int headingHeight(const QFontMetrics& metrics)
{
    return metrics.height() * 3 / 2;
}

} // namespace

bool GroupedRows::isInHeading(const QModelIndex& index, const QRect& row, const QFontMetrics& metrics,
                              const QPoint& place)
{
    return !headingAbove(index).isEmpty() && place.y() < row.top() + headingHeight(metrics);
}

void GroupedRows::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString heading = headingAbove(index);
    QStyleOptionViewItem row = option;
    if (!heading.isEmpty()) {
        row.rect.setTop(option.rect.top() + headingHeight(option.fontMetrics));
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
        size.rheight() += headingHeight(option.fontMetrics);
    return size;
}

} // namespace kel
