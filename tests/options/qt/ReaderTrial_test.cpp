// SPDX-License-Identifier: MIT
// The button that tests the reader: pressed, followed, stopped, and left while the test goes on.

#include "tests/options/qt/DrivenDialog.h"

#include "platform/PortLook.h"
#include "platform/PortMap.h"
#include "simulators/SimulatorTable.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QToolButton>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Nothing that a test does lasts so long, in milliseconds.
constexpr int kPatienceOfAWindow = 600'000;

/// Forgets where the window was.
class NoPlace final : public WindowPlace {
    [[nodiscard]] std::string recall() override { return {}; }
    void keep(const std::string&) override {}
};

std::string caption(OpenWindow& window)
{
    return window.get<QPushButton>("testReader").text().toStdString();
}

bool isEnabled(OpenWindow& window, const char* name)
{
    return window.get<QWidget>(name).isEnabled();
}

std::string notice(OpenWindow& window)
{
    const auto& label = window.get<QLabel>("notice");
    return label.isVisible() ? label.text().toStdString() : "";
}

/// A reader on port 4 of this machine, whose ports come beside the window.
class ReaderTrialWindow : public testing::Test {
protected:
    void show(const std::string& device, const DrivenDialog::Steps& steps)
    {
        const PortOverride port(4, device);
        clsKELReader reader;
        reader.SetError(host);
        reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
        reader.Port(4);
        DrivenDialog::run(
            reader,
            [&](OpenWindow& window) {
                ASSERT_TRUE(QTest::qWaitFor([&] { return isEnabled(window, "testReader"); }, kPatienceOfAWindow));
                steps(window);
            },
            nullptr, std::make_shared<QtOptionsPresenter>(place_));
        setErrorObject(nullptr);
        EXPECT_TRUE(host->order.empty());
        EXPECT_TRUE(lookAtPort(4).opens) << "the test has left it";
    }

    static void waitUntilItWaits(OpenWindow& window)
    {
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return notice(window) == "Test: waiting for the reader …"; }, kPatienceOfAWindow));
    }

    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();

private:
    NoPlace place_;
};

TEST_F(ReaderTrialWindow, ABoxSaysThatTheReaderAnswers)
{
    const auto device = makeSimulator(kelReaderTypeScantronScanMark2500, {.model = kelReaderTypeScantronScanMark2500});
    PtyDeviceHost pty(*device, {.link = {}, .paceHost = false});
    pty.start();
    show(pty.deviceFile(), [](OpenWindow& window) {
        window.acknowledgeNextBox();
        window.click("testReader");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.boxes.empty(); }, kPatienceOfAWindow));
        ASSERT_EQ(window.boxes.size(), 1U);
        EXPECT_EQ(window.boxes[0].title, "Test of the Reader");
        EXPECT_THAT(window.boxes[0].text, StartsWith("Scantron Scanmark 2500 answers at port 4. "));
        EXPECT_TRUE(QTest::qWaitFor([&] { return caption(window) == "Test t&he reader"; }, kPatienceOfAWindow));
        EXPECT_EQ(notice(window), "");
        EXPECT_TRUE(window.window().isVisible());
    });
}

TEST_F(ReaderTrialWindow, TheTestIsFollowedAndStopped)
{
    const Pty silent;
    show(silent.name(), [](OpenWindow& window) {
        window.click("testReader");
        waitUntilItWaits(window);
        EXPECT_EQ(caption(window), "Stop t&he test");
        EXPECT_TRUE(isEnabled(window, "testReader"));
        EXPECT_FALSE(isEnabled(window, "lookAgain"));
        EXPECT_FALSE(isEnabled(window, "assignPort"));
        EXPECT_TRUE(isEnabled(window, "cboBaud"));
        window.click("testReader");
        EXPECT_TRUE(QTest::qWaitFor([&] { return notice(window) == "The test was stopped."; }, kPatienceOfAWindow));
        EXPECT_EQ(caption(window), "Test t&he reader");
        EXPECT_TRUE(isEnabled(window, "lookAgain"));
        window.click("chkRejecter");
        EXPECT_EQ(notice(window), "") << "the user went on";
    });
}

TEST_F(ReaderTrialWindow, AWindowThatIsClosedMeanwhileEndsTheTest)
{
    const Pty silent;
    show(silent.name(), [](OpenWindow& window) {
        window.click("testReader");
        waitUntilItWaits(window);
        window.click("cmdCancel");
        EXPECT_FALSE(window.window().isVisible());
    });
    show(silent.name(), [](OpenWindow& window) {
        window.click("testReader");
        waitUntilItWaits(window);
        window.click("cmdOK");
        EXPECT_FALSE(window.window().isVisible());
    });
}

TEST_F(ReaderTrialWindow, EnterIsForTheButtonThatHasTheFocus)
{
    const Pty silent;
    show(silent.name(), [](OpenWindow& window) {
        auto& button = window.get<QPushButton>("testReader");
        button.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&button, Qt::Key_Return);
        EXPECT_EQ(caption(window), "Stop t&he test");
        EXPECT_TRUE(window.window().isVisible());
    });
}

TEST(ReaderTestButton, ItNeedsAModelAndAPort)
{
    OptionsHost host({});
    DrivenDialog::run(host, [](OpenWindow& window) {
        EXPECT_FALSE(isEnabled(window, "testReader"));
        window.choose("cboReaderType", "Sekonic SR-410");
        EXPECT_FALSE(isEnabled(window, "testReader")) << "there is no port";
        window.choose("cboReaderType", "Sekonic SR3500");
        EXPECT_TRUE(isEnabled(window, "testReader")) << "it needs none";
        QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&window.get<QWidget>("testReader"));
        ASSERT_NE(access, nullptr);
        EXPECT_EQ(access->text(QAccessible::Name).toStdString(), "Test the reader");
    });
}

TEST(ReaderTestButton, WhatStandsInAFieldIsPutRightFirst)
{
    OptionsHost host({1});
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    DrivenDialog::run(host, [](OpenWindow& window) {
        window.type("txtReaderTimeout", "77");
        window.acknowledgeNextBox();
        window.get<QPushButton>("testReader").click(); // as its access key does: the field keeps the focus
        ASSERT_EQ(window.boxes.size(), 1U);
        EXPECT_THAT(window.boxes[0].text, HasSubstr("The reader did not answer"));
        EXPECT_EQ(window.fieldText("txtReaderTimeout"), "10");
    });
    EXPECT_EQ(host.reader().Timeout(), 10);
    EXPECT_TRUE(host.heard().order.empty());
}

} // namespace
} // namespace kel::test
