// SPDX-License-Identifier: MIT
#include "options/qt/ListBox.h"

#include "options/qt/GroupedRows.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyleOptionComboBox>

#include <algorithm>

namespace kel {

namespace {

/// How many rows an open list shows at a time: on a small screen it leaves the window to be seen.
constexpr int kRowsInView = 12;

/// The list opens beneath its field; Qt's own style lays it over the whole screen.
class BeneathItsField final : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

} // namespace

ListBox::ListBox(QWidget* parent) : QComboBox(parent)
{
    auto* const style = new BeneathItsField;
    style->setParent(this);
    setStyle(style);
    setFocusPolicy(Qt::StrongFocus);
    setMaxVisibleItems(kRowsInView);
    setItemDelegate(new GroupedRows(this));
    view()->installEventFilter(this);
    view()->viewport()->installEventFilter(this);
    takeColors();
}

/// What stands in the field of a list that cannot be worked is as grey as a value there.
void ListBox::takeColors()
{
    QPalette colors = palette();
    const QColor grey = colors.color(QPalette::Disabled, QPalette::Text);
    if (colors.color(QPalette::Disabled, QPalette::PlaceholderText) == grey)
        return;
    colors.setColor(QPalette::Disabled, QPalette::PlaceholderText, grey);
    setPalette(colors);
}

/// A user may change to dark colours at any time.
void ListBox::changeEvent(QEvent* event)
{
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
}

bool ListBox::isGrey(int row) const
{
    return (model()->flags(model()->index(row, modelColumn())) & Qt::ItemIsEnabled) == 0;
}

void ListBox::setRow(int at, const Row& row)
{
    insertItem(at, row.text);
    setItemData(at, row.reason, Qt::ToolTipRole);
    setItemData(at, row.heading, GroupedRows::kHeading);
    if (row.isGrey)
        dynamic_cast<QStandardItemModel&>(*model()).item(at)->setFlags(Qt::NoItemFlags);
}

void ListBox::takeRows(const std::vector<Row>& rows)
{
    const auto stands = [&](const Row& row, int at) {
        return at < count() && itemText(at) == row.text && isGrey(at) == row.isGrey &&
               itemData(at, Qt::ToolTipRole).toString() == row.reason &&
               itemData(at, GroupedRows::kHeading).toString() == row.heading;
    };
    const auto isWantedLater = [&](std::size_t from, int at) {
        return std::any_of(rows.begin() + static_cast<std::ptrdiff_t>(from), rows.end(),
                           [&](const Row& row) { return stands(row, at); });
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto at = static_cast<int>(i);
        while (at < count() && !isWantedLater(i, at))
            removeItem(at);
        if (!stands(rows[i], at))
            setRow(at, rows[i]);
    }
    while (count() > static_cast<int>(rows.size()))
        removeItem(count() - 1);
}

void ListBox::showPopup()
{
    if (narrow_)
        view()->setMinimumWidth(view()->sizeHintForColumn(modelColumn()) +
                                view()->verticalScrollBar()->sizeHint().width());
    QComboBox::showPopup();
}

/// Qt remembers the size that it finds at first, when there are no rows yet.
QSize ListBox::sizeHint() const
{
    ensurePolished();
    QStyleOptionComboBox option;
    initStyleOption(&option);
    int widest = fontMetrics().horizontalAdvance(placeholderText());
    for (int row = 0; row < count() && !narrow_; ++row)
        widest = std::max(widest, fontMetrics().horizontalAdvance(itemText(row)));
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, QSize(widest, fontMetrics().height()), this);
}

/// Whether the key is a character of a text to look for: a blank is one only within a text, else it opens the list.
bool ListBox::types(const QKeyEvent& event)
{
    const bool isShortcut = (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    if (isShortcut || event.text().size() != 1 || !event.text().front().isPrint())
        return false;
    if (!sinceLetter_.isValid() || sinceLetter_.hasExpired(QApplication::keyboardInputInterval()))
        typed_.clear();
    if (typed_.isEmpty() && event.text() == " ")
        return false;
    typed_ += event.text();
    sinceLetter_.start();
    return true;
}

/// The next row that begins with a text, else the next one with it anywhere; -1 for none.
int ListBox::rowOf(const QString& text, int from) const
{
    for (const Qt::MatchFlag where : {Qt::MatchStartsWith, Qt::MatchContains}) {
        const QModelIndexList found =
            model()->match(model()->index(std::max(from, 0) % std::max(count(), 1), modelColumn()), Qt::DisplayRole,
                           text, -1, where | Qt::MatchWrap);
        for (const QModelIndex& each : found) {
            if (!isGrey(each.row()))
                return each.row();
        }
    }
    return -1;
}

void ListBox::keyPressEvent(QKeyEvent* event)
{
    if (!types(*event)) {
        QComboBox::keyPressEvent(event);
        return;
    }
    // One letter goes on to the next row; more of them stay while the row fits.
    const int row = rowOf(typed_, typed_.size() == 1 ? currentIndex() + 1 : currentIndex());
    if (row >= 0)
        setCurrentIndex(row);
}

void ListBox::wheelEvent(QWheelEvent* event)
{
    // The wheel is for scrolling past, unless the user is in the list.
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

/// Whether the mouse is on a heading of the open list.
bool ListBox::isOnHeading(const QEvent& event) const
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove: break;
    default: return false;
    }
    const QPoint place = static_cast<const QMouseEvent&>(event).position().toPoint();
    const QModelIndex index = view()->indexAt(place);
    return GroupedRows::isInHeading(index, view()->visualRect(index), view()->fontMetrics(), place);
}

/// In the open list the same keys move about; nothing is chosen yet. A heading takes no part.
bool ListBox::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == view()->viewport())
        return isOnHeading(*event) || QComboBox::eventFilter(watched, event);
    if (event->type() != QEvent::KeyPress || !types(*static_cast<QKeyEvent*>(event)))
        return QComboBox::eventFilter(watched, event);
    const int current = view()->currentIndex().row();
    const int row = rowOf(typed_, typed_.size() == 1 ? current + 1 : current);
    if (row >= 0)
        view()->setCurrentIndex(model()->index(row, modelColumn()));
    return true;
}

} // namespace kel
