// SPDX-License-Identifier: MIT
// The window worked with mouse and keys.

#include "tests/options/qt/DrivenDialog.h"

#include "options/posix/OptionsModule.h"
#include "simulators/SimulatorTable.h"
#include "strings/VBLMRTSModule.h"

#include <clocale>

namespace kel::test {
namespace {

TEST(OptionsWindowTest, ChoosesTypesAndSavesWithOk)
{
    OptionsHost host({1, 3});
    const Boolean ok = DrivenDialog::run(host, [](OpenWindow& window) {
        window.choose("cboReaderType", "Scantron Scanmark 4");
        window.choose("cboPort", "3");
        window.choose("cboBaud", "384");
        window.click("chkRejecter");
        window.type("txtMarkCutOff", "12");
        window.type("txtSystemPause", "120");
        window.click("cmdOK");
    });
    EXPECT_EQ(ok, True);
    EXPECT_EQ(host.reader().ReaderType(), kelReaderTypeScantronScanMark4000);
    EXPECT_EQ(host.reader().Port(), 3);
    EXPECT_EQ(host.reader().BaudRate(), kelReaderBaudRate38400);
    EXPECT_EQ(host.reader().Rejecter(), False);
    EXPECT_EQ(host.reader().MarkCutOff(), 12);
    EXPECT_EQ(host.reader().SleepTime(), 120);
    EXPECT_EQ(QCoreApplication::instance(), nullptr) << "the application was for the call";
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C") << "the process keeps its locale";
}

TEST(OptionsWindowTest, ShowsTheModelsState)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeSekonicSR3500);
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_EQ(window.chosen("cboReaderType"), "Sekonic SR3500 (USB)");
        EXPECT_TRUE(window.get<QComboBox>("cboReaderType").hasFocus());
        EXPECT_FALSE(window.get<QComboBox>("cboBaud").isEnabled());
        EXPECT_TRUE(window.get<QComboBox>("cboBaud").isVisible());
        EXPECT_EQ(window.get<QComboBox>("cboDataBits").currentIndex(), -1);
        EXPECT_FALSE(window.get<QPushButton>("cmdLocate").isVisible());
        window.choose("cboReaderType", "Scantron EZData");
        EXPECT_FALSE(window.get<QComboBox>("cboBaud").isVisible());
        EXPECT_TRUE(window.get<QPushButton>("cmdLocate").isVisible());
        EXPECT_FALSE(window.get<QWidget>("txtMarkCutOff").isVisible());
        EXPECT_EQ(window.fieldText("txtRecognitionThreshold"), "4");
        QTest::keyClick(&window.get<QComboBox>("cboReaderType"), Qt::Key_Home);
        EXPECT_FALSE(window.get<QWidget>("frmReader").isVisible());
        EXPECT_FALSE(window.get<QWidget>("cmdDefaults").isEnabled());
    });
}

TEST(OptionsWindowTest, EscapeAndClosingAreCancel)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    window.type("txtMarkCutOff", "200");
                                    QTest::keyClick(&window.window(), Qt::Key_Escape);
                                }),
              False);
    EXPECT_EQ(DrivenDialog::run(host, [](OpenWindow& window) { window.window().close(); }), False);
    EXPECT_EQ(DrivenDialog::run(host, [](OpenWindow& window) { window.click("cmdCancel"); }), False);
    EXPECT_EQ(host.reader().MarkCutOff(), 250);
}

TEST(OptionsWindowTest, EnterIsOkAndValidatesTheFieldThatIsTypedIn)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    window.type("txtMarkCutOff", "999");
                                    QTest::keyClick(&window.get<QWidget>("txtMarkCutOff"), Qt::Key_Return);
                                    EXPECT_EQ(window.fieldText("txtMarkCutOff"), "254");
                                    EXPECT_EQ(window.get<QLabel>("notice").text(),
                                              "Mark cut-off: 999 is outside the range, so it became 254. Choose “OK” "
                                              "again to keep that.");
                                    ASSERT_TRUE(window.window().isVisible()) << "what was corrected is shown first";
                                    QTest::keyClick(&window.get<QWidget>("txtMarkCutOff"), Qt::Key_Return);
                                }),
              True);
    EXPECT_EQ(host.reader().MarkCutOff(), 254);
}

TEST(OptionsWindowTest, AFieldTakesDigitsSnapsToItsBoundsAndGetsBackItsNumber)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [](OpenWindow& window) {
        window.type("txtRecognitionThreshold", "1x2.3-");
        EXPECT_EQ(window.fieldText("txtRecognitionThreshold"), "123");
        QTest::keyClick(&window.get<QWidget>("txtRecognitionThreshold"), Qt::Key_Tab);
        EXPECT_EQ(window.fieldText("txtRecognitionThreshold"), "15");
        EXPECT_TRUE(window.get<QWidget>("txtMarkDiscrimination").hasFocus());
        EXPECT_EQ(window.get<QWidget>("txtMarkDiscrimination").findChild<QLineEdit*>()->selectedText(), "3");

        window.type("txtSystemPause", "soon");
        EXPECT_EQ(window.fieldText("txtSystemPause"), "soon");
        QTest::keyClick(&window.get<QWidget>("txtSystemPause"), Qt::Key_Backspace);
        for (int i = 0; i < 4; ++i)
            QTest::keyClick(&window.get<QWidget>("txtSystemPause"), Qt::Key_Backspace);
        window.get<QWidget>("cboPort").setFocus();
        EXPECT_EQ(window.fieldText("txtSystemPause"), "50") << "an empty field is no wish for a number";
    });
    EXPECT_TRUE(host.heard().reports.empty());
}

TEST(OptionsWindowTest, WhatIsNoNumberKeepsTheFocusAndIsNotSaved)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    host.reader().SleepTime(70);
    const auto stays = [&](OpenWindow& window, std::size_t reports) {
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
        EXPECT_TRUE(window.window().isVisible());
        EXPECT_TRUE(window.get<QWidget>("txtSystemPause").hasFocus());
        EXPECT_EQ(window.fieldText("txtSystemPause"), "nan");
        EXPECT_EQ(host.heard().reports.size(), reports);
    };
    const Boolean ok = DrivenDialog::run(host, [&](OpenWindow& window) {
        window.type("txtSystemPause", "nan");
        QTest::keyClick(&window.get<QWidget>("txtSystemPause"), Qt::Key_Return);
        stays(window, 1);
        QTest::keyClick(&window.get<QWidget>("txtSystemPause"), Qt::Key_Tab);
        stays(window, 2);
        window.click("cmdOK");
        stays(window, 3);
        window.click("cmdCancel");
        EXPECT_FALSE(window.window().isVisible());
    });
    EXPECT_EQ(ok, False);
    EXPECT_EQ(host.heard().reports.size(), 3U) << "nobody who cancels is told";
    EXPECT_EQ(host.heard().reports.back().ErrorNumber, 13);
    EXPECT_EQ(host.reader().SleepTime(), 70);
}

TEST(OptionsWindowTest, EveryKeyThatStepsMakesOneStep)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& field = window.get<QWidget>("txtSystemPause");
        field.setFocus(Qt::TabFocusReason);
        const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
            QTest::keyClick(&field, key, modifiers);
            return window.fieldText("txtSystemPause");
        };
        EXPECT_EQ(press(Qt::Key_Up, {}), "51");
        EXPECT_EQ(press(Qt::Key_PageUp, {}), "52");
        EXPECT_EQ(press(Qt::Key_Up, Qt::ControlModifier), "53");
        EXPECT_EQ(press(Qt::Key_PageDown, {}), "52");
        EXPECT_EQ(press(Qt::Key_Down, Qt::ControlModifier), "51");
        EXPECT_EQ(press(Qt::Key_Down, {}), "50");
    });
}

TEST(OptionsWindowTest, SpinButtonsStepWithinTheBounds)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    host.reader().MarkCutOff(14);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    auto& field = window.get<QWidget>("txtMarkCutOff");
                                    field.setFocus();
                                    QTest::keyClick(&field, Qt::Key_Up);
                                    EXPECT_EQ(window.fieldText("txtMarkCutOff"), "15");
                                    QTest::keyClick(&field, Qt::Key_Up);
                                    EXPECT_EQ(window.fieldText("txtMarkCutOff"), "15");
                                    window.type("txtMarkDiscrimination", "0");
                                    QTest::keyClick(&window.get<QWidget>("txtMarkDiscrimination"), Qt::Key_Down);
                                    window.click("cmdOK");
                                }),
              True);
    EXPECT_EQ(host.reader().MarkCutOff(), 15);
    EXPECT_EQ(host.reader().MarkDiscrimination(), 0);
}

TEST(OptionsWindowTest, DefaultsBringBackTheCatalogue)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    host.reader().MarkCutOff(5);
    host.reader().BaudRate(kelReaderBaudRate300);
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_EQ(window.fieldText("txtMarkCutOff"), "5");
        window.click("cmdDefaults");
        EXPECT_EQ(window.fieldText("txtMarkCutOff"), "10");
        EXPECT_EQ(window.chosen("cboBaud"), "19200");
        EXPECT_TRUE(window.get<QComboBox>("cboReaderType").hasFocus());
    });
}

TEST(OptionsWindowTest, GradingLocksTheNumbersAndTellsWhenItIsTurnedOff)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeNCSOpScan4);
    DrivenDialog::run(host, [](OpenWindow& window) {
        window.click("chkReaderGrade");
        EXPECT_EQ(window.fieldText("txtRecognitionThreshold"), "6");
        EXPECT_FALSE(window.get<QWidget>("txtRecognitionThreshold").isEnabled());
        window.acknowledgeNextBox();
        window.click("chkReaderGrade");
        ASSERT_EQ(window.boxes.size(), 1U);
        EXPECT_EQ(window.boxes[0].text, VBLM_RTString(TextNumber(172)));
        EXPECT_EQ(window.boxes[0].title, VBLM_RTString(TextNumber(108)));
        EXPECT_EQ(window.boxes[0].icon, QMessageBox::Information);
        EXPECT_EQ(window.boxes[0].button, VBLM_RTString(TextNumber(154)));
        EXPECT_TRUE(window.get<QWidget>("txtRecognitionThreshold").isEnabled());
    });
}

TEST(OptionsWindowTest, LocatesASimulatedReader)
{
    OptionsHost host({1});
    const auto device = makeSimulator(kelReaderTypeNCSEZData, {});
    host.machine.attach(2, *device);
    host.reader().LoadDefaults(kelReaderTypeNCSEZData);
    const Boolean ok = DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_EQ(window.chosen("cboPort"), "1");
        window.acknowledgeNextBox();
        window.click("cmdLocate");
        ASSERT_EQ(window.boxes.size(), 1U);
        EXPECT_EQ(window.boxes[0].text, VBLM_RTString(TextNumber(160)) + "2");
        EXPECT_EQ(window.chosen("cboPort"), "2");
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        window.click("cmdOK");
    });
    EXPECT_EQ(ok, True);
    EXPECT_EQ(host.reader().Port(), 2);
    EXPECT_TRUE(host.heard().reports.empty());
}

TEST(OptionsWindowTest, WithoutAPortOkWarnsAndStays)
{
    OptionsHost host({});
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    window.acknowledgeNextBox();
                                    window.click("cmdOK");
                                    ASSERT_EQ(window.boxes.size(), 1U);
                                    EXPECT_EQ(window.boxes[0].text, VBLM_RTString(TextNumber(174)));
                                    EXPECT_EQ(window.boxes[0].icon, QMessageBox::Warning);
                                    EXPECT_TRUE(window.window().isVisible());
                                    EXPECT_EQ(window.get<QComboBox>("cboPort").placeholderText().toStdString(),
                                              VBLM_RTString(TextNumber(138)));
                                }),
              False);
}

TEST(OptionsWindowTest, AccessKeysReachTheFieldsBehindTheLabels)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [](OpenWindow& window) {
        for (auto* const label : window.window().findChildren<QLabel*>()) {
            if (!label->objectName().startsWith("lbl") || !label->text().contains('&'))
                continue;
            ASSERT_NE(label->buddy(), nullptr) << label->objectName().toStdString();
            EXPECT_EQ(label->buddy()->objectName().mid(3), label->objectName().mid(3));
        }
        const QKeySequence key = QKeySequence::mnemonic(window.get<QLabel>("lblBaud").text());
        ASSERT_FALSE(key.isEmpty());
        QTest::keyClick(&window.window(), key[0].key(), key[0].keyboardModifiers());
        EXPECT_TRUE(window.get<QComboBox>("cboBaud").hasFocus());
    });
}

TEST(OptionsWindowTest, TabGoesThroughTheControlsInTheirOrder)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantron8000);
    DrivenDialog::run(host, [](OpenWindow& window) {
        std::vector<std::string> order;
        for (int step = 0; step < 30; ++step) {
            const std::string name = QApplication::focusWidget()->objectName().toStdString();
            if (!order.empty() && name == order.front())
                break;
            order.push_back(name);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        static_cast<void>(window);
        EXPECT_EQ(order, (std::vector<std::string>{"cboReaderType", "chkFeeder", "chkDuplex", "txtRecognitionThreshold",
                                                   "txtMarkDiscrimination", "txtMarkCutOff", "txtReaderTimeout",
                                                   "txtSystemPause", "cboPort", "cboBaud", "cboDataBits", "cboParity",
                                                   "cboStopBits", "cboFlowControl", "cmdDefaults", "help", "testReader",
                                                   "cmdOK", "cmdCancel"}));
    });
}

TEST(OptionsWindowTest, TheWheelChangesNothingInPassing)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [](OpenWindow& window) {
        for (const char* const name : {"cboBaud", "txtMarkCutOff"}) {
            auto& widget = window.get<QWidget>(name);
            QWheelEvent turn(QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton, {},
                             Qt::NoScrollPhase, false);
            QApplication::sendEvent(&widget, &turn);
        }
        EXPECT_EQ(window.chosen("cboBaud"), "19200");
        EXPECT_EQ(window.fieldText("txtMarkCutOff"), "10");
    });
}

/// Gives the window a font twice as large.
class LargeFont final : public ErrorObject {
    Int32 RaiseError(const ErrorReport&) override { return 0; }
    void SetFont(void* form) override
    {
        auto* const window = static_cast<QWidget*>(form);
        QFont font = window->font();
        font.setPointSizeF(font.pointSizeF() * 2);
        window->setFont(font);
        window->setProperty("font given", true);
    }
};

TEST(OptionsWindowTest, TheErrorObjectsFontIsUsed)
{
    OptionsHost host;
    host.reader().SetError(std::make_shared<LargeFont>());
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_TRUE(window.window().property("font given").toBool());
        EXPECT_EQ(window.get<QWidget>("cboBaud").font().pointSizeF(), window.window().font().pointSizeF());
        EXPECT_GT(window.get<QWidget>("lblTitle").font().pointSizeF(), window.window().font().pointSizeF());
    });
}

TEST(HostApplicationTest, IsUsedAndOutlivesTheDialog)
{
    int count = 0;
    QApplication application(count, nullptr);
    QWidget owner;
    OptionsHost host;
    const Boolean ok = DrivenDialog::run(
        host,
        [&](OpenWindow& window) {
            EXPECT_EQ(window.window().parentWidget(), &owner);
            window.choose("cboReaderType", "Sekonic SR1800");
            window.click("cmdOK");
        },
        &owner);
    EXPECT_EQ(ok, True);
    EXPECT_EQ(QCoreApplication::instance(), &application);
}

TEST(HostApplicationTest, WithoutWindowsIsReported)
{
    int count = 0;
    const QCoreApplication application(count, nullptr);
    OptionsHost host;
    EXPECT_EQ(DrivenDialog::run(host, [](OpenWindow&) {}), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_NE(host.heard().reports[0].ErrorDescription.find("QApplication"), std::string::npos);
}

TEST(OptionsModuleTest, IsLoadedFromBesideTheComponentAndShowsTheDialog)
{
    OptionsHost host({1});
    const Boolean ok = DrivenDialog::run(
        host,
        [](OpenWindow& window) {
            window.choose("cboReaderType", "Peripheral");
            window.click("cmdOK");
        },
        nullptr, loadOptionsModule());
    EXPECT_EQ(ok, True);
    EXPECT_EQ(host.reader().ReaderType(), kelReaderTypePDIVMR138);
    EXPECT_EQ(host.reader().RecognitionThreshold(), 240);
}

} // namespace
} // namespace kel::test
