// SPDX-License-Identifier: MIT
#pragma once

#include "options/Decision.h"
#include "options/WindowPlace.h"
#include "options/frmOptions.h"
#include "options/qt/ListBox.h"
#include "options/qt/NumberField.h"

#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include <functional>
#include <map>
#include <vector>

class QGridLayout;
class QScrollArea;
class QToolButton;

namespace kel {

/// The options form as a window. Each control of the form is a widget of the same name; the layout is Qt's own, so
/// that every text has its room in any language and at any size of type. On a small screen what is between the title
/// and the buttons is scrolled.
class OptionsWindow final : public QDialog, private DecisionView {
public:
    OptionsWindow(frmOptions& form, WindowPlace& place, QWidget* parent);
    ~OptionsWindow() override;

    /// Shows the window and returns when the form has been hidden.
    void run();

    /// Shows the form as it is now.
    void refresh();

    [[nodiscard]] QString okCaption() const { return QString::fromStdString(form_.cmdOK.Caption()); }

    /// Escape, and closing the window, is Cancel.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* header();
    QGroupBox* readerBox();
    QGroupBox* portBox();
    QWidget* buttons();

    QLabel* put(Label& label, QWidget* buddy);
    QCheckBox* put(CheckBox& box);
    ListBox* put(PowerCombo& list);
    NumberField* put(PowerEdit& edit);
    QPushButton* put(PowerButton& button);
    QGroupBox* put(Frame& frame);
    void addLine(QGridLayout& grid, int row, Label& label, QWidget* field, Control& control);
    QToolButton* resetOf(Control& control);
    QLabel* noModel();
    template <class Widget>
    Widget* enlist(Control& control, Widget* widget);

    void act(const std::function<void()>& what);
    void click(PowerButton& button);
    [[nodiscard]] NumberField* numberField() const;
    [[nodiscard]] const PowerEdit* field() override;
    [[nodiscard]] bool leaveField() override;
    void showCorrection(const std::string& sentence) override;
    void showForm() override { refresh(); }
    [[nodiscard]] bool allows(const std::string& changes) override;
    void notify(const std::string& sentence);
    void explain(Control& control, QWidget& widget);
    void explainFocus();
    void followFocus(QWidget* now);
    void enlargeTitle();
    void reserveRoom();
    void takePlace();
    void keepPlace();
    void openHelp();
    QPushButton* testButton(QWidget* parent);
    void testReader();
    void showTest();

    frmOptions& form_;
    WindowPlace& place_;
    std::map<QWidget*, Control*> controls_;
    std::vector<std::function<void()>> updates_;
    QScrollArea* body_ = nullptr;
    QLabel* title_ = nullptr;
    QToolButton* help_ = nullptr;
    QLabel* notice_ = nullptr;
    bool refreshing_ = false;
    bool showsTest_ = false;
    QSize usualSize_;
};

} // namespace kel
