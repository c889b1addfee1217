// SPDX-License-Identifier: MIT
// What the window has around the controls of the form.

#include "tests/options/qt/DrivenDialog.h"

#include "options/qt/GroupedRows.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QToolButton>

namespace kel::test {
namespace {

using testing::HasSubstr;

std::string toolTip(OpenWindow& window, const char* name)
{
    return window.get<QWidget>(name).toolTip().toStdString();
}

TEST(OptionsAidsTest, EachSettingHasAToolTipAndItsLabelTheSame)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_THAT(toolTip(window, "txtMarkCutOff"), HasSubstr("Range: 192 to 254. Default for this model: 250."));
        EXPECT_EQ(toolTip(window, "lblMarkCutOff"), toolTip(window, "txtMarkCutOff"));
        EXPECT_THAT(window.get<QWidget>("cboBaud").accessibleDescription().toStdString(), HasSubstr("speed"));
        EXPECT_THAT(window.get<QWidget>("chkFeeder").whatsThis().toStdString(), HasSubstr("feeder"));
    });
}

TEST(OptionsAidsTest, F1ExplainsTheSettingWhereTheHostHasNoHelp)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_TRUE(window.get<QWidget>("help").isVisible());
        window.get<QWidget>("cboBaud").setFocus();
        QTest::keyClick(&window.get<QWidget>("cboBaud"), Qt::Key_F1);
        const auto shown = [] {
            const auto all = QApplication::topLevelWidgets();
            return std::any_of(all.begin(), all.end(),
                               [](const QWidget* each) { return each->isVisible() && each->inherits("QWhatsThat"); });
        };
        EXPECT_TRUE(shown());
    });
}

TEST(OptionsAidsTest, WhatDiffersFromTheDefaultHasAButtonThatBringsItBack)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& reset = window.get<QToolButton>("reset_txtSystemPause");
        EXPECT_FALSE(reset.isVisible());
        window.type("txtSystemPause", "120");
        window.get<QWidget>("cboBaud").setFocus(Qt::TabFocusReason);
        QCoreApplication::processEvents();
        ASSERT_TRUE(reset.isVisible());
        EXPECT_EQ(reset.accessibleName(), "System pause (ms): Reset to the model's default: 50");
        reset.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&reset, Qt::Key_Return);
        ASSERT_TRUE(window.window().isVisible()) << "Enter was for the button";
        EXPECT_EQ(window.fieldText("txtSystemPause"), "50");
        EXPECT_FALSE(reset.isVisible());

        window.click("chkRejecter");
        auto& feeder = window.get<QToolButton>("reset_chkRejecter");
        ASSERT_TRUE(feeder.isVisible());
        feeder.click();
        EXPECT_FALSE(feeder.isVisible());
    });
}

TEST(OptionsAidsTest, WhatWouldChangeUntouchedIsToldBeforeItIsSaved)
{
    OptionsHost host({1, 3});
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    host.reader().Port(9);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    window.acknowledgeNextBox();
                                    window.click("cmdOK"); // the box is closed with its default button
                                    ASSERT_EQ(window.boxes.size(), 1U);
                                    EXPECT_EQ(window.boxes[0].title, "Other Settings Would Change");
                                    EXPECT_THAT(window.boxes[0].text, HasSubstr("Port: now 9, then 1"));
                                    EXPECT_EQ(window.boxes[0].button, "Back");
                                    EXPECT_TRUE(window.window().isVisible());
                                }),
              False);
    EXPECT_EQ(host.reader().Port(), 9);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    QTimer save;
                                    QObject::connect(&save, &QTimer::timeout, [] {
                                        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                                        if (box)
                                            box->buttons().value(0)->click();
                                    });
                                    save.start(1);
                                    window.click("cmdOK");
                                }),
              True);
    EXPECT_EQ(host.reader().Port(), 1);
}

TEST(OptionsAidsTest, WithoutAModelTheWindowSaysWhatToDo)
{
    OptionsHost host;
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_TRUE(window.get<QLabel>("noModel").isVisible());
        EXPECT_THAT(window.get<QLabel>("noModel").text().toStdString(), HasSubstr("any part of its name"));
        window.choose("cboReaderType", "Sekonic SR-410");
        EXPECT_FALSE(window.get<QLabel>("noModel").isVisible());
    });
}

TEST(OptionsAidsTest, TheModelsStandUnderTheirMakers)
{
    OptionsHost host;
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& models = window.get<QComboBox>("cboReaderType");
        std::vector<std::string> makers;
        for (int row = 0; row < models.count(); ++row) {
            const QString maker = models.itemData(row, GroupedRows::kHeading).toString();
            if (maker.isEmpty())
                continue;
            EXPECT_TRUE(models.itemText(row).startsWith(maker)) << row;
            makers.push_back(maker.toStdString());
        }
        EXPECT_EQ(makers, (std::vector<std::string>{"Apperson", "Chatsworth Data", "Peripheral Dynamics Inc.",
                                                    "Scantron", "Sekonic"}));
        models.showPopup();
        const auto height = [&](int row) { return models.view()->sizeHintForRow(row); };
        EXPECT_GT(height(1), height(2)) << "the heading has its room";
        const QString before = models.currentText();
        const auto click = [&](int down) {
            const QRect row = models.view()->visualRect(models.model()->index(1, 0));
            QTest::mouseClick(models.view()->viewport(), Qt::LeftButton, {}, row.topLeft() + QPoint(20, down));
        };
        click(3);
        EXPECT_TRUE(models.view()->isVisible()) << "a heading is not a row";
        EXPECT_EQ(models.currentText(), before);
        click(height(1) - 3);
        EXPECT_EQ(models.currentText(), models.itemText(1));
    });
}

} // namespace
} // namespace kel::test
