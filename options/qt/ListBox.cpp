// SPDX-License-Identifier: MIT
#include "options/qt/ListBox.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QProxyStyle>
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
    view()->installEventFilter(this);
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

/// Qt remembers the size that it finds at first, when there are no rows yet.
QSize ListBox::sizeHint() const
{
    ensurePolished();
    QStyleOptionComboBox option;
    initStyleOption(&option);
    int widest = fontMetrics().horizontalAdvance(placeholderText());
    for (int row = 0; row < count(); ++row)
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
                           text, 1, where | Qt::MatchWrap);
        if (!found.isEmpty())
            return found.front().row();
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

/// In the open list the same keys move about; nothing is chosen yet.
bool ListBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !types(*static_cast<QKeyEvent*>(event)))
        return QComboBox::eventFilter(watched, event);
    const int current = view()->currentIndex().row();
    const int row = rowOf(typed_, typed_.size() == 1 ? current + 1 : current);
    if (row >= 0)
        view()->setCurrentIndex(model()->index(row, modelColumn()));
    return true;
}

} // namespace kel
