// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace kel {

/// Draws the rows of an open list, some of them below a heading.
class GroupedRows final : public QStyledItemDelegate {
public:
    /// What stands above a row; empty for most.
    static constexpr int kHeading = Qt::UserRole;

    using QStyledItemDelegate::QStyledItemDelegate;

    /// Whether a place is in the heading above a row, whose place in the list is given.
    [[nodiscard]] static bool isInHeading(const QModelIndex& index, const QRect& row, const QFontMetrics& metrics,
                                          const QPoint& place);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace kel
