// SPDX-License-Identifier: MIT
// What a user expects of any window: keys, room on the screen, what assistive programs are told.

#include "tests/options/qt/DrivenDialog.h"

#include "strings/VBLMRTSModule.h"
#include "tests/support/TemporaryFolder.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>

namespace kel::test {
namespace {

TEST(OptionsWindowKeysTest, EnterWorksTheButtonThatHasTheFocus)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().MarkCutOff(200);
    const Boolean ok = DrivenDialog::run(host, [](OpenWindow& window) {
        auto& defaults = window.get<QPushButton>("cmdDefaults");
        defaults.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&defaults, Qt::Key_Return);
        ASSERT_TRUE(window.window().isVisible());
        EXPECT_EQ(window.fieldText("txtMarkCutOff"), "250");
        auto& cancel = window.get<QPushButton>("cmdCancel");
        cancel.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&cancel, Qt::Key_Enter);
        EXPECT_FALSE(window.window().isVisible());
    });
    EXPECT_EQ(ok, False);
    EXPECT_EQ(host.reader().MarkCutOff(), 200);
}

TEST(OptionsWindowKeysTest, EnterOnLocateLooksForTheReader)
{
    OptionsHost host({1});
    host.reader().LoadDefaults(kelReaderTypeNCSEZData);
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& locate = window.get<QPushButton>("cmdLocate");
        locate.setFocus(Qt::TabFocusReason);
        window.acknowledgeNextBox();
        QTest::keyClick(&locate, Qt::Key_Return);
        EXPECT_EQ(window.boxes.size(), 1U);
        EXPECT_TRUE(window.window().isVisible());
    });
}

TEST(OptionsWindowKeysTest, OneButtonLooksLikeTheOneThatEnterWorks)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeNCSEZData);
    DrivenDialog::run(host, [](OpenWindow& window) {
        const auto defaultOnes = [&] {
            std::set<std::string> names;
            for (const auto* const button : window.window().findChildren<QPushButton*>()) {
                if (button->isDefault())
                    names.insert(button->objectName().toStdString());
            }
            return names;
        };
        for (const char* const name : {"cmdLocate", "cmdDefaults", "cmdOK", "cmdCancel"}) {
            window.get<QWidget>(name).setFocus(Qt::TabFocusReason);
            EXPECT_EQ(defaultOnes(), std::set<std::string>{name});
        }
        window.get<QWidget>("cboReaderType").setFocus(Qt::TabFocusReason);
        EXPECT_EQ(defaultOnes(), std::set<std::string>{"cmdOK"});
    });
}

TEST(OptionsWindowKeysTest, AModelIsFoundByAnyPartOfItsName)
{
    OptionsHost host;
    DrivenDialog::run(host, [](OpenWindow& window) {
        // The letters of a test on a busy machine come slowly.
        QApplication::setKeyboardInputInterval(600'000);
        auto& models = window.get<QComboBox>("cboReaderType");
        QTest::keyClicks(&models, "Scantron Scanmark 4");
        EXPECT_EQ(window.chosen("cboReaderType"), "Scantron Scanmark 4000");
        EXPECT_FALSE(models.view()->isVisible()) << "a blank within a name is a part of it";
    });
    DrivenDialog::run(host, [](OpenWindow& window) {
        QApplication::setKeyboardInputInterval(600'000);
        auto& models = window.get<QComboBox>("cboReaderType");
        models.showPopup();
        QTest::keyClicks(models.view(), "mark es 22");
        EXPECT_EQ(models.view()->currentIndex().data().toString(), "Scantron Scanmark ES 2260");
        EXPECT_EQ(window.chosen("cboReaderType"), "No reader") << "nothing is chosen while the list is open";
        QTest::keyClick(models.view(), Qt::Key_Return);
        EXPECT_EQ(window.chosen("cboReaderType"), "Scantron Scanmark ES 2260");
        EXPECT_TRUE(window.window().isVisible());
    });
}

TEST(OptionsWindowRoomTest, TheSizeIsTheSameWhateverTheFirstModel)
{
    OptionsHost host;
    std::map<std::pair<int, int>, int> sizes;
    for (const auto model : {kelReaderTypeNone, kelReaderTypeNCSEZData, kelReaderTypeSekonicSR3500,
                             kelReaderTypeScantronScanMark4000, kelReaderTypeChatsworthACF100}) {
        host.reader().LoadDefaults(model);
        DrivenDialog::run(host, [&](OpenWindow& window) {
            sizes[{window.window().width(), window.window().height()}] = model;
        });
    }
    EXPECT_EQ(sizes.size(), 1U) << testing::PrintToString(sizes);
}

TEST(OptionsWindowRoomTest, AnOpenListLeavesHalfOfTheScreen)
{
    OptionsHost host;
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& models = window.get<QComboBox>("cboReaderType");
        models.showPopup();
        EXPECT_LE(models.view()->window()->height(), window.window().screen()->geometry().height() / 2);
        models.hidePopup();
    });
}

/// A screen of a size, for the windows of a test.
class ScreenOf {
public:
    ScreenOf(int width, int height) : before_(std::getenv("QT_QPA_PLATFORM"))
    {
        const std::string file = (folder_.path() / "screen.json").string();
        std::ofstream(file) << R"({"screens": [{"name": "test", "x": 0, "y": 0, "width": )" << width
                            << R"(, "height": )" << height
                            << R"(, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";
        setenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + file).c_str(), 1);
    }
    ~ScreenOf() { setenv("QT_QPA_PLATFORM", before_.c_str(), 1); }
    ScreenOf(const ScreenOf&) = delete;
    ScreenOf& operator=(const ScreenOf&) = delete;

private:
    TemporaryFolder folder_;
    std::string before_;
};

TEST(OptionsWindowRoomTest, ASmallScreenScrollsWhatIsAboveTheButtons)
{
    // 1366 x 768 at 150 %, and less.
    for (const QSize& size : {QSize(911, 512), QSize(640, 400)}) {
        const ScreenOf screen(size.width(), size.height());
        OptionsHost host;
        host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
        DrivenDialog::run(host, [&](OpenWindow& window) {
            ASSERT_EQ(window.window().screen()->geometry().size(), size);
            EXPECT_LE(window.window().width(), size.width());
            EXPECT_LE(window.window().height(), size.height());
            const auto isSeen = [&](const char* name) {
                auto& widget = window.get<QWidget>(name);
                return widget.visibleRegion().boundingRect() == widget.rect();
            };
            for (const char* const name : {"cmdDefaults", "cmdOK", "cmdCancel"})
                EXPECT_TRUE(isSeen(name)) << name;
            for (const char* const name : {"txtSystemPause", "cboFlowControl", "cboReaderType"}) {
                window.get<QWidget>(name).setFocus(Qt::TabFocusReason);
                QCoreApplication::processEvents();
                EXPECT_TRUE(isSeen(name)) << name;
            }
        });
    }
}

TEST(OptionsWindowRoomTest, SizeAndPositionAreThoseOfTheLastTime)
{
    const ScreenOf screen(1600, 1200);
    OptionsHost host;
    const QRect wanted(220, 130, 900, 700);
    QRect usual;
    DrivenDialog::run(host, [&](OpenWindow& window) {
        usual = QRect(window.window().pos(), window.window().size());
        window.window().move(wanted.topLeft());
        window.window().resize(wanted.size());
    });
    EXPECT_NE(usual, wanted);
    DrivenDialog::run(host, [&](OpenWindow& window) {
        EXPECT_EQ(QRect(window.window().pos(), window.window().size()), wanted);
        window.window().resize(usual.size());
    });
    const ScreenOf smaller(800, 600);
    DrivenDialog::run(host, [&](OpenWindow& window) {
        EXPECT_TRUE(
            window.window().screen()->geometry().contains(QRect(window.window().pos(), window.window().size())));
    });
}

TEST(OptionsWindowAccessTest, AssistiveProgramsAreToldNamesValuesAndBounds)
{
    OptionsHost host({1, 3});
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    DrivenDialog::run(host, [](OpenWindow& window) {
        QAccessibleInterface* const cutOff =
            QAccessible::queryAccessibleInterface(&window.get<QWidget>("txtMarkCutOff"));
        ASSERT_NE(cutOff, nullptr);
        ASSERT_NE(cutOff->valueInterface(), nullptr);
        EXPECT_EQ(cutOff->role(), QAccessible::SpinBox);
        EXPECT_EQ(cutOff->valueInterface()->minimumValue().toInt(), 192);
        EXPECT_EQ(cutOff->valueInterface()->maximumValue().toInt(), 254);
        EXPECT_EQ(cutOff->valueInterface()->currentValue().toInt(), 250);
        EXPECT_EQ(cutOff->text(QAccessible::Value), "250");
        cutOff->valueInterface()->setCurrentValue(999);
        EXPECT_EQ(window.fieldText("txtMarkCutOff"), "254");

        for (auto* const label : window.window().findChildren<QLabel*>()) {
            if (!label->buddy() || !label->isVisible())
                continue;
            QAccessibleInterface* const field = QAccessible::queryAccessibleInterface(label->buddy());
            ASSERT_NE(field, nullptr);
            const auto relations = field->relations(QAccessible::Label);
            EXPECT_TRUE(std::any_of(relations.begin(), relations.end(), [&](const auto& relation) {
                return relation.first->object() == label;
            })) << label->objectName().toStdString();
        }
    });
}

TEST(OptionsWindowLifeTest, AWindowThatSomethingElseHidesIsCancelled)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    EXPECT_EQ(DrivenDialog::run(host,
                                [](OpenWindow& window) {
                                    window.type("txtMarkCutOff", "200");
                                    window.window().hide();
                                }),
              False);
    EXPECT_EQ(host.reader().MarkCutOff(), 250);
}

/// Colours in which what is meant for a background stands out from that background alone.
QPalette colorsOf(QColor window, QColor windowText, QColor field, QColor fieldText, QColor grey)
{
    QPalette colors(windowText, window, window.lighter(), window.darker(), window, fieldText, Qt::white, field, window);
    colors.setColor(QPalette::Button, window);
    colors.setColor(QPalette::Highlight, "#204a87");
    colors.setColor(QPalette::ButtonText, windowText);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        colors.setColor(QPalette::Disabled, role, grey);
    return colors;
}

/// How much a colour stands out from another, from 1 to 21.
double contrast(QColor one, QColor other)
{
    const auto light = [](QColor color) {
        const auto part = [](double level) {
            return level <= 0.03928 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const auto [dark, bright] = std::minmax({light(one), light(other)});
    return (bright + 0.05) / (dark + 0.05);
}

/// How much the text of a widget stands out from what most of the widget shows.
double contrastOfText(QWidget& widget)
{
    const QImage shown = widget.window()->grab(QRect(widget.mapTo(widget.window(), QPoint()), widget.size())).toImage();
    std::map<QRgb, int> count;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x)
            ++count[shown.pixel(x, y)];
    }
    const auto most =
        std::max_element(count.begin(), count.end(), [](auto& a, auto& b) { return a.second < b.second; });
    double best = 1;
    for (const auto& [color, times] : count) {
        if (times >= 3)
            best = std::max(best, contrast(QColor(color), QColor(most->first)));
    }
    return best;
}

TEST(OptionsWindowColorsTest, EveryTextCanBeReadInDarkAndInHighContrast)
{
    int count = 0;
    QApplication application(count, nullptr);
    const QPalette dark = colorsOf("#202020", "#e8e8e8", "#101010", "#f0f0f0", "#909090");
    const QPalette highContrast = colorsOf(Qt::black, Qt::yellow, Qt::white, Qt::black, "#606060");
    application.setPalette(dark);
    OptionsHost host({1, 3});
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [&](OpenWindow& window) {
        const auto look = [&](const char* colors) {
            QCoreApplication::processEvents();
            for (auto* const widget : window.window().findChildren<QWidget*>()) {
                const bool hasText = widget->inherits("QLabel") || widget->inherits("QAbstractButton") ||
                                     widget->inherits("QComboBox") || widget->inherits("QAbstractSpinBox");
                if (hasText && widget->isVisible() && widget->isEnabled() && !widget->objectName().startsWith("qt_")) {
                    EXPECT_GT(contrastOfText(*widget), 4.5) << colors << " " << widget->objectName().toStdString();
                }
            }
        };
        look("dark");
        application.setPalette(highContrast);
        look("high contrast");
        window.choose("cboReaderType", "Sekonic SR3500 (USB)");
        const QPalette list = window.get<QComboBox>("cboDataBits").palette();
        EXPECT_EQ(list.color(QPalette::Disabled, QPalette::PlaceholderText), QColor("#606060"));
    });
}

TEST(OptionsWindowDirectionTest, FromRightToLeftTheLabelsAreOnTheRight)
{
    int count = 0;
    QApplication application(count, nullptr);
    application.setLayoutDirection(Qt::RightToLeft);
    OptionsHost host({1, 3});
    host.reader().LoadDefaults(kelReaderTypeNCSEZData);
    DrivenDialog::run(host, [](OpenWindow& window) {
        for (const char* const model : {"Scantron EZData", "Scantron Scanmark 4000"}) {
            window.choose("cboReaderType", model);
            QCoreApplication::processEvents();
            for (auto* const label : window.window().findChildren<QLabel*>()) {
                if (!label->buddy() || !label->isVisible())
                    continue;
                const auto place = [&](QWidget& widget) {
                    return QRect(widget.mapTo(&window.window(), QPoint()), widget.size());
                };
                EXPECT_GE(place(*label).left(), place(*label->buddy()).right()) << label->objectName().toStdString();
                EXPECT_TRUE(window.window().rect().contains(place(*label->buddy())));
            }
        }
    });
}

TEST(OptionsWindowKeysTest, TabReachesEverythingThatCanBeWorked)
{
    OptionsHost host({1, 3});
    host.reader().HelpFile("/nowhere/help.html");
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& models = window.get<QComboBox>("cboReaderType");
        for (int row = 0; row < models.count(); ++row) {
            models.setCurrentIndex(row);
            std::set<std::string> usable;
            for (const auto* const widget : window.window().findChildren<QWidget*>()) {
                const bool isWorked = widget->inherits("QAbstractButton") || widget->inherits("QComboBox") ||
                                      widget->inherits("QAbstractSpinBox");
                if (isWorked && widget->isVisible() && widget->isEnabled() && !widget->inherits("QScrollBar"))
                    usable.insert(widget->objectName().toStdString());
            }
            std::set<std::string> reached;
            models.setFocus();
            while (reached.insert(QApplication::focusWidget()->objectName().toStdString()).second)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(reached, usable) << models.currentText().toStdString();
        }
    });
    host.reader().HelpFile("");
}

} // namespace
} // namespace kel::test
