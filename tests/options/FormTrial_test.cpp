// SPDX-License-Identifier: MIT
// The test of the reader from the dialog: with the settings on the form, beside the window, and none of the host's
// business.

#include "options/PresenterPlatform.h"
#include "platform/PortLook.h"
#include "platform/PortMap.h"
#include "simulators/SimulatorTable.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "startup/Main.h"
#include "tests/options/OptionsHost.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <thread>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// The dialog as a window shows it, on a thread with ports of its own; boxes are kept.
class FormTrialTest : public testing::Test {
protected:
    FormTrialTest()
    {
        Main();
        ::setenv("KELREADER_REGISTRY_DIR", folder_.path().c_str(), 1);
    }
    ~FormTrialTest() override { ::unsetenv("KELREADER_REGISTRY_DIR"); }

    struct Shown {
        explicit Shown(const std::string& device)
        {
            EXPECT_TRUE(PortMap(platform().registry()).set(4, device));
            reader.SetError(host);
            form = std::make_unique<frmOptions>();
            form->SetReader(reader);
            form->Aids().showPortsAsTheyCome();
            windowed.emplace(platform(), screen);
            scope.emplace(*windowed);
            form->Show();
            EXPECT_TRUE(waitUntil([&] {
                form->Aids().turn();
                return !form->Aids().looksAtPorts();
            }));
        }
        ~Shown() { setErrorObject(nullptr); }
        Shown(const Shown&) = delete;
        Shown& operator=(const Shown&) = delete;

        [[nodiscard]] OptionsAids& aids() { return form->Aids(); }
        void choose(kelReaderType model)
        {
            form->cboReaderType.CurrentRow(form->cboReaderType.FindRow(CStr(model), 0, 1));
        }
        void turnToTheEnd()
        {
            EXPECT_TRUE(waitUntil([&] {
                aids().turn();
                return !aids().testsReader();
            }));
        }
        void turnUntilItWaits()
        {
            EXPECT_TRUE(waitUntil([&] {
                aids().turn();
                return aids().testProgress() == "Test: waiting for the reader …";
            }));
        }

        std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
        SimulatedScreen screen;
        clsKELReader reader;
        std::optional<PresenterPlatform> windowed;
        std::optional<PlatformScope> scope;
        std::unique_ptr<frmOptions> form;
    };

    /// On a thread that is within no scope; the port is this machine's.
    template <class Steps>
    static void onItsOwnThread(Steps steps)
    {
        std::thread([&] { steps(); }).join();
    }

private:
    TemporaryFolder folder_;
};

TEST_F(FormTrialTest, TheReaderAnswersToTheSettingsOnTheForm)
{
    const auto device = makeSimulator(kelReaderTypeScantronScanMark2500, {.model = kelReaderTypeScantronScanMark2500});
    PtyDeviceHost pty(*device, {.link = {}, .paceHost = false});
    pty.start();
    onItsOwnThread([&] {
        Shown shown(pty.deviceFile());
        EXPECT_FALSE(shown.aids().canTestReader()) << "no model";
        shown.choose(kelReaderTypeScantronScanMark2500);
        EXPECT_TRUE(shown.aids().canTestReader());
        shown.aids().testReader();
        EXPECT_TRUE(shown.aids().testsReader());
        EXPECT_TRUE(shown.aids().usesPorts());
        EXPECT_FALSE(shown.aids().canTestReader()) << "one at a time";
        EXPECT_THAT(shown.aids().testProgress(), StartsWith("Test: "));
        shown.turnToTheEnd();
        ASSERT_EQ(shown.screen.boxes().size(), 1U);
        EXPECT_THAT(shown.screen.boxes()[0].text, StartsWith("Scantron Scanmark 2500 answers at port 4. "));
        EXPECT_EQ(shown.screen.boxes()[0].title, "Test of the Reader");
        EXPECT_EQ(shown.screen.boxes()[0].icon, BoxIcon::Information);
        EXPECT_THAT(shown.aids().testProgress(), IsEmpty());
        EXPECT_EQ(shown.reader.ReaderType(), kelReaderTypeNone) << "nothing is saved";
        EXPECT_EQ(shown.reader.Port(), 0);
        EXPECT_THAT(shown.host->order, IsEmpty());
        EXPECT_TRUE(shown.form->Visible());
    });
    pty.stop();
    pty.join();
    EXPECT_THAT(device->errors(), IsEmpty());
}

TEST_F(FormTrialTest, AReaderThatSaysNothingIsSaidInABoxAndNotToTheHost)
{
    const Pty silent;
    onItsOwnThread([&] {
        Shown shown(silent.name());
        shown.choose(kelReaderTypeScantronScanMark2500);
        shown.form->txtReaderTimeout.Text("1");
        shown.aids().testReader();
        shown.turnToTheEnd();
        ASSERT_EQ(shown.screen.boxes().size(), 1U);
        EXPECT_THAT(shown.screen.boxes()[0].text, StartsWith("Reader Not Answering: "));
        EXPECT_EQ(shown.screen.boxes()[0].icon, BoxIcon::Exclamation);
        EXPECT_THAT(shown.host->order, IsEmpty());
    });
}

TEST_F(FormTrialTest, AStoppedTestIsOverSoonAndNeedsNoBox)
{
    const Pty silent;
    onItsOwnThread([&] {
        Shown shown(silent.name());
        shown.choose(kelReaderTypeScantronScanMark2500);
        shown.form->txtReaderTimeout.Text("600");
        shown.aids().testReader();
        shown.turnUntilItWaits();
        shown.aids().stopTest();
        shown.turnToTheEnd();
        EXPECT_EQ(shown.aids().testProgress(), "The test was stopped.");
        EXPECT_THAT(shown.screen.boxes(), IsEmpty());
        EXPECT_TRUE(shown.aids().canTestReader());
        EXPECT_THAT(shown.host->order, IsEmpty());
    });
}

TEST_F(FormTrialTest, ADialogThatIsClosedMeanwhileEndsTheTestAndLeavesThePort)
{
    const Pty silent;
    onItsOwnThread([&] {
        Shown shown(silent.name());
        shown.choose(kelReaderTypeAppersonBenchMark3000);
        shown.form->txtReaderTimeout.Text("600");
        shown.aids().testReader();
        shown.turnUntilItWaits();
        EXPECT_FALSE(lookAtPort(4).opens) << "the test has it";
        shown.form->cmdCancel.Click();
        shown.form.reset();
        EXPECT_TRUE(lookAtPort(4).opens);
        EXPECT_THAT(shown.screen.boxes(), IsEmpty());
        EXPECT_THAT(shown.host->order, IsEmpty());
    });
}

TEST_F(FormTrialTest, OnTheMachineOfATestItIsHeldAtOnce)
{
    OptionsHost host;
    const auto device = makeSimulator(kelReaderTypeNCSEZData, {.model = kelReaderTypeNCSEZData});
    host.machine.attach(3, *device);
    frmOptions& form = host.form();
    EXPECT_FALSE(form.Aids().canTestReader());
    host.choose(kelReaderTypeNCSEZData);
    form.cboPort.CurrentRow(form.cboPort.FindRow("3", 0, 0));
    form.Aids().testReader();
    EXPECT_FALSE(form.Aids().testsReader());
    ASSERT_EQ(host.boxes().size(), 1U);
    EXPECT_THAT(host.boxes()[0].text, HasSubstr(" answers at port 3. Its firmware version is "));
    EXPECT_THAT(host.heard().order, IsEmpty());
    EXPECT_EQ(host.reader().ReaderType(), kelReaderTypeNone);
    EXPECT_EQ(host.machine.screen().MousePointer(), kMousePointerDefault);
}

} // namespace
} // namespace kel::test
