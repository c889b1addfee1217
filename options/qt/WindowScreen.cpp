// SPDX-License-Identifier: MIT
#include "options/qt/WindowScreen.h"

#include "options/qt/OptionsWindow.h"

#include <QApplication>
#include <QMessageBox>

#include <utility>

namespace kel {

namespace {

QMessageBox::Icon qtIcon(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::Information: return QMessageBox::Information;
    case BoxIcon::Exclamation: return QMessageBox::Warning;
    case BoxIcon::None: break;
    }
    return QMessageBox::NoIcon;
}

/// The hourglass is not for the user who is to read a box.
class PointerPause {
public:
    explicit PointerPause(WindowScreen& screen) : screen_(screen), shape_(screen.MousePointer())
    {
        screen_.MousePointer(kMousePointerDefault);
    }
    ~PointerPause() { screen_.MousePointer(shape_); }
    PointerPause(const PointerPause&) = delete;
    PointerPause& operator=(const PointerPause&) = delete;

private:
    WindowScreen& screen_;
    Int32 shape_;
};

} // namespace

WindowScreen::Use::Use(WindowScreen& screen, OptionsWindow& window)
    : screen_(screen), previous_(std::exchange(screen.window_, &window))
{
}

WindowScreen::Use::~Use()
{
    screen_.MousePointer(kMousePointerDefault);
    screen_.window_ = previous_;
}

BoxAnswer WindowScreen::MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title)
{
    const PointerPause pause(*this);
    if (window_)
        window_->refresh();
    QMessageBox box(window_ && window_->isVisible() ? window_ : nullptr);
    box.setIcon(qtIcon(icon));
    box.setWindowTitle(QString::fromStdString(title));
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(text));
    if (buttons == BoxButtons::Ok) {
        QPushButton* const ok = box.addButton(QMessageBox::Ok);
        if (window_)
            ok->setText(window_->okCaption());
        box.exec();
        return BoxAnswer::Ok;
    }
    box.setStandardButtons(QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore);
    box.setEscapeButton(QMessageBox::Abort);
    switch (box.exec()) {
    case QMessageBox::Retry: return BoxAnswer::Retry;
    case QMessageBox::Ignore: return BoxAnswer::Ignore;
    default: return BoxAnswer::Abort;
    }
}

void WindowScreen::Beep()
{
    QApplication::beep();
}

void WindowScreen::MousePointer(Int32 shape)
{
    const bool wasBusy = mousePointer_ == kMousePointerHourglass;
    const bool isBusy = shape == kMousePointerHourglass;
    mousePointer_ = shape;
    if (isBusy == wasBusy)
        return;
    if (isBusy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
    // What follows may hold up this thread, so the window is drawn now as it stands.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace kel
