// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QElapsedTimer>

#include <vector>

namespace kel {

/// A drop-down list in which a row is found by typing any part of its text, blanks included, whether the list is open
/// or closed.
class ListBox final : public QComboBox {
public:
    explicit ListBox(QWidget* parent);

    /// A line of the list; one that cannot be chosen is grey, and has a reason.
    struct Row {
        QString text;
        QString heading{}; ///< what stands above it when the list is open
        QString reason{};
        bool isGrey = false;
    };
    /// Takes these rows, and leaves those alone that are there already: the list may be open.
    void takeRows(const std::vector<Row>& rows);

    /// The field stays as narrow as its prompt, whatever the rows; an open list has the room that they need.
    void keepNarrow() { narrow_ = true; }

    void showPopup() override;

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
    [[nodiscard]] bool isGrey(int row) const;
    [[nodiscard]] bool isOnHeading(const QEvent& event) const;
    void setRow(int at, const Row& row);

    bool narrow_ = false;
    QString typed_;
    QElapsedTimer sinceLetter_;
};

} // namespace kel
