// SPDX-License-Identifier: MIT
#include "options/qt/QtOptionsPresenter.h"

#include "options/frmOptions.h"
#include "options/qt/CaptionMeasure.h"
#include "options/qt/Display.h"
#include "options/qt/OptionsWindow.h"

#include <QApplication>
#include <QThread>

#include <array>
#include <clocale>

namespace kel {

namespace {

/// An application for the time of one dialog. The process keeps its locale: Qt would set the user's for everybody.
class OwnApplication {
public:
    explicit OwnApplication(std::string platform)
        : platform_(std::move(platform)), arguments_{name_.data(), option_.data(), platform_.data(), nullptr}
    {
        const char* const current = std::setlocale(LC_ALL, nullptr);
        const std::string locale = current ? current : "C";
        application_.emplace(count_, arguments_.data());
        std::setlocale(LC_ALL, locale.c_str());
    }

private:
    std::string name_ = "kelreader";
    std::string option_ = "-platform";
    std::string platform_;
    std::array<char*, 4> arguments_;
    int count_ = 3;
    std::optional<QApplication> application_;
};

/// Why the host's application cannot show a window to this caller; empty if it can.
std::string objection(QCoreApplication* application)
{
    if (!qobject_cast<QApplication*>(application))
        return "The options dialog cannot be shown: the host's Qt application is no QApplication, which windows need.";
    if (application->thread() != QThread::currentThread())
        return "The options dialog cannot be shown: call ShowOptions on the thread of the host's QApplication.";
    return {};
}

} // namespace

bool QtOptionsPresenter::show(frmOptions& form, void* parent, std::string& reason)
{
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        reason = objection(application);
        if (reason.empty())
            showWindow(form, static_cast<QWidget*>(parent));
        return reason.empty();
    }
    const Display display = findDisplay();
    reason = display.reason;
    if (display.platform.empty())
        return false;
    const OwnApplication application(display.platform);
    showWindow(form, nullptr);
    return true;
}

void QtOptionsPresenter::showWindow(frmOptions& form, QWidget* parent)
{
    OptionsWindow window(form, place_, parent);
    CaptionMeasure measure(window);
    const WindowScreen::Use use(screen_, window);
    form.Measure(&measure);
    form.Window(static_cast<QWidget*>(&window));
    form.Aids().showPortsAsTheyCome();
    form.Show();
    window.run();
    form.Window(nullptr);
    form.Measure(nullptr);
}

} // namespace kel
