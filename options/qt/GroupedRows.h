// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace kel {

/// Draws the rows of an open list, the first of each group below a heading.
class GroupedRows final : public QStyledItemDelegate {
public:
    /// What a row stands under.
    static constexpr int kGroup = Qt::UserRole;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace kel
