// What a user expects of any window: keys, room on the screen, what assistive programs are told.

#include "tests/options/qt/DrivenDialog.h"

#include "strings/VBLMRTSModule.h"
#include "tests/support/TemporaryFolder.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QScreen>

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

} // namespace
} // namespace kel::test
