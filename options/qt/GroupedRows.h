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

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace kel
