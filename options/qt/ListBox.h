// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QElapsedTimer>

namespace kel {

/// A drop-down list in which a row is found by typing any part of its text, blanks included, whether the list is open
/// or closed.
class ListBox final : public QComboBox {
public:
    explicit ListBox(QWidget* parent);

    /// As wide as the widest row.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeColors();
    [[nodiscard]] bool types(const QKeyEvent& event);
    [[nodiscard]] int rowOf(const QString& text, int from) const;

    QString typed_;
    QElapsedTimer sinceLetter_;
};

} // namespace kel
