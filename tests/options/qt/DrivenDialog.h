// SPDX-License-Identifier: MIT
#pragma once

#include "tests/options/OptionsHost.h"

#include "options/OptionsPresenter.h"
#include "options/qt/QtOptionsPresenter.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace kel::test {

/// The options window while it is shown, for somebody who works it with mouse and keys.
class OpenWindow {
public:
    explicit OpenWindow(QWidget& window) : window_(window) {}

    [[nodiscard]] QWidget& window() { return window_; }

    template <class Widget>
    [[nodiscard]] Widget& get(const char* name)
    {
        auto* const widget = window_.findChild<Widget*>(name);
        if (!widget)
            throw std::runtime_error(std::string("there is no ") + name);
        return *widget;
    }

    void click(const char* name)
    {
        auto& widget = get<QWidget>(name);
        // A check box is worked at its mark.
        const QPoint place(widget.inherits("QCheckBox") ? 8 : widget.width() / 2, widget.height() / 2);
        QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
    }

    /// Goes down a list by keys to the row that begins so.
    void choose(const char* name, const char* beginning)
    {
        auto& list = get<QComboBox>(name);
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_Home);
        for (int row = 0; row < list.count() && !list.currentText().startsWith(beginning); ++row)
            QTest::keyClick(&list, Qt::Key_Down);
        EXPECT_TRUE(list.currentText().startsWith(beginning)) << beginning;
    }

    /// Goes into a field as with Tab, and types.
    void type(const char* name, const char* text)
    {
        auto& field = get<QWidget>(name);
        field.setFocus(Qt::TabFocusReason);
        QCoreApplication::processEvents();
        QTest::keyClicks(&field, text);
    }

    [[nodiscard]] std::string text(const char* name) { return get<QLineEdit>(name).text().toStdString(); }
    [[nodiscard]] std::string fieldText(const char* name)
    {
        return get<QWidget>(name).findChild<QLineEdit*>()->text().toStdString();
    }
    [[nodiscard]] std::string chosen(const char* name) { return get<QComboBox>(name).currentText().toStdString(); }

    /// Acknowledges the next box as soon as it stands there, and keeps what it said.
    void acknowledgeNextBox()
    {
        auto* const timer = new QTimer(&window_);
        QObject::connect(timer, &QTimer::timeout, &window_, [this, timer] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            timer->stop();
            boxes.push_back({box->text().toStdString(), box->windowTitle().toStdString(), box->icon(),
                             box->defaultButton() ? box->defaultButton()->text().toStdString()
                                                  : box->buttons().value(0)->text().toStdString()});
            box->accept();
        });
        timer->start(1);
    }

    struct Box {
        std::string text;
        std::string title;
        QMessageBox::Icon icon;
        std::string button;
    };
    std::vector<Box> boxes;

private:
    QWidget& window_;
};

/// Calls `ShowOptions` and works the window that comes up. A window that is still open afterwards is closed.
class DrivenDialog final : public OptionsPresenter, public std::enable_shared_from_this<DrivenDialog> {
public:
    using Steps = std::function<void(OpenWindow&)>;

    static Boolean
    run(OptionsHost& host, Steps steps, void* parent = nullptr,
        std::shared_ptr<OptionsPresenter> shownBy = std::make_shared<QtOptionsPresenter>(registeredWindowPlace()))
    {
        return run(host.reader(), std::move(steps), parent, std::move(shownBy));
    }

    /// The same for a reader of this machine.
    static Boolean run(clsKELReader& reader, Steps steps, void* parent, std::shared_ptr<OptionsPresenter> shownBy)
    {
        const auto dialog = std::make_shared<DrivenDialog>();
        dialog->steps_ = std::move(steps);
        dialog->shownBy_ = std::move(shownBy);
        setOptionsPresenter(dialog);
        const Boolean result = reader.ShowOptions(parent);
        setOptionsPresenter(nullptr);
        return result;
    }

    bool show(frmOptions& form, void* parent, std::string& reason) override
    {
        const auto load = form.onLoad;
        form.onLoad = [this, load] {
            load();
            // The window stands as soon as its own event loop runs.
            QTimer::singleShot(0, qApp, [this] { work(); });
        };
        const bool shown = shownBy_->show(form, parent, reason);
        EXPECT_FALSE(form.onHide) << "the window is gone, and the form lives on";
        return shown;
    }
    Screen* screen() override { return shownBy_->screen(); }

private:
    void work()
    {
        QWidget* const window = QApplication::activeModalWidget();
        ASSERT_NE(window, nullptr);
        static_cast<void>(QTest::qWaitForWindowActive(window, 2000));
        try {
            OpenWindow open(*window);
            steps_(open);
        } catch (const std::exception& failure) {
            ADD_FAILURE() << failure.what();
        }
        if (QApplication::activeModalWidget() == window)
            window->close();
    }

    Steps steps_;
    std::shared_ptr<OptionsPresenter> shownBy_;
};

} // namespace kel::test
