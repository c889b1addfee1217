// SPDX-License-Identifier: MIT
// The list of ports of this machine while a window shows it: pseudo-terminals, and a server that says nothing.

#include "options/frmOptions.h"
#include "platform/FileDescriptor.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "reader/clsKELReader.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "startup/Main.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Takes connections and never answers.
class SilentServer {
public:
    SilentServer() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        ::bind(socket_.number(), reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(socket_.number(), 16);
        ::getsockname(socket_.number(), reinterpret_cast<sockaddr*>(&address), &size);
        line = "tls:127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }
    std::string line;

private:
    FileDescriptor socket_;
};

/// Runs on a thread that has a registry of its own, with the ports that it maps.
class PortsBesideTest : public testing::Test {
protected:
    PortsBesideTest()
    {
        Main();
        ::setenv("KELREADER_REGISTRY_DIR", folder_.path().c_str(), 1);
    }
    ~PortsBesideTest() override { ::unsetenv("KELREADER_REGISTRY_DIR"); }

    /// The dialog as a window shows it.
    struct Shown {
        Shown()
        {
            form.SetReader(reader);
            form.Aids().showPortsAsTheyCome();
        }
        [[nodiscard]] std::vector<std::string> rows() const
        {
            std::vector<std::string> result;
            for (Int32 row = 0; row < form.cboPort.RowCount(); ++row)
                result.push_back(form.cboPort.CellText(0, row) + ":" + form.cboPort.Remark(row));
            return result;
        }
        [[nodiscard]] std::vector<std::string> unavailable() const
        {
            std::vector<std::string> result;
            for (const PowerCombo::Line& line : form.cboPort.Unavailable())
                result.push_back(line.text);
            return result;
        }
        template <class Condition>
        void turnUntil(Condition&& condition)
        {
            ASSERT_TRUE(waitUntil([&] {
                form.Aids().turn();
                return condition();
            }));
        }
        void turnToTheEnd()
        {
            turnUntil([&] { return !form.Aids().looksAtPorts(); });
        }

        clsKELReader reader;
        frmOptions form;
    };

    template <class Steps>
    void onItsOwnThread(Steps steps)
    {
        std::thread([&] { steps(); }).join();
    }
    static void map(Int16 port, const std::string& device)
    {
        ASSERT_TRUE(PortMap(platform().registry()).set(port, device));
    }
    static std::string fileName(const std::string& device) { return device.substr(device.rfind('/') + 1); }

private:
    TemporaryFolder folder_;
};

TEST_F(PortsBesideTest, APortThatDoesNotAnswerHoldsUpNobody)
{
    onItsOwnThread([] {
        const SilentServer server;
        const Pty first;
        const Pty second;
        map(2, server.line);
        map(5, first.name());
        map(3, second.name());
        Shown shown;
        shown.reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
        shown.reader.Port(5);
        shown.form.Show();
        EXPECT_TRUE(shown.form.Aids().looksAtPorts());
        EXPECT_EQ(shown.form.cboPort.Prompt(), "Looking at the ports …");
        EXPECT_EQ(shown.form.cboPort.CurrentRow(), -1);
        shown.turnUntil([&] { return shown.form.cboPort.RowCount() == 2; });
        EXPECT_THAT(shown.rows(), ElementsAre("3:" + fileName(second.name()), "5:" + fileName(first.name())));
        EXPECT_EQ(shown.form.cboPort.Text(), "5") << "the reader's own";
        shown.turnToTheEnd();
        EXPECT_THAT(shown.unavailable(), ElementsAre(HasSubstr(" – no answer")));
        EXPECT_EQ(shown.form.cboPort.Prompt(), "Choose a value");
        EXPECT_THAT(shown.form.Aids().portAdvice(), IsEmpty());
        EXPECT_EQ(shown.form.cboPort.Text(), "5");
    });
}

TEST_F(PortsBesideTest, WhatComesAfterTheDialogWasClosedIsDropped)
{
    onItsOwnThread([] {
        const SilentServer server;
        map(2, server.line);
        map(4, server.line);
        Shown shown;
        shown.form.Show();
        shown.form.cmdCancel.Click();
        EXPECT_FALSE(shown.form.Visible());
        EXPECT_TRUE(shown.form.Aids().looksAtPorts());
    });
}

TEST_F(PortsBesideTest, WhatTheUserHasChosenStaysChosen)
{
    onItsOwnThread([] {
        const Pty first;
        const Pty second;
        map(1, first.name());
        map(2, second.name());
        Shown shown;
        shown.reader.Port(1);
        shown.form.Show();
        shown.turnToTheEnd();
        EXPECT_EQ(shown.form.cboPort.Text(), "1");
        shown.form.cboPort.CurrentRow(1);
        const Pty third;
        map(9, third.name());
        shown.form.Aids().lookAgain();
        shown.turnToTheEnd();
        EXPECT_EQ(shown.form.cboPort.RowCount(), 3);
        EXPECT_EQ(shown.form.cboPort.Text(), "2");
    });
}

TEST_F(PortsBesideTest, OkWaitsForThePortThatHasNotComeYet)
{
    onItsOwnThread([] {
        const Pty first;
        map(7, first.name());
        Shown shown;
        shown.reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
        shown.reader.Port(7);
        shown.form.Show();
        shown.form.cmdOK.Click();
        EXPECT_FALSE(shown.form.Visible());
        EXPECT_EQ(shown.reader.Port(), 7);
    });
}

TEST_F(PortsBesideTest, PortsThatCannotBeChosenHaveAReason)
{
    onItsOwnThread([] {
        const Pty taken;
        const FileDescriptor owner(::open(taken.name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        ASSERT_EQ(::flock(owner.number(), LOCK_EX | LOCK_NB), 0);
        map(1, taken.name());
        map(2, "/dev/not-there");
        map(3, "/dev/null");
        Shown shown;
        shown.form.Show();
        shown.turnToTheEnd();
        EXPECT_THAT(shown.rows(), IsEmpty());
        EXPECT_THAT(shown.unavailable(),
                    ElementsAre("1 – " + fileName(taken.name()) + " – in use", "2 – not-there – not connected",
                                "3 – null – not a serial device"));
        EXPECT_THAT(shown.form.cboPort.Unavailable()[0].reason, HasSubstr(taken.name()));
        EXPECT_THAT(shown.form.Aids().portAdvice(), HasSubstr("the list says why"));
    });
}

TEST_F(PortsBesideTest, ADeviceGetsANumber)
{
    onItsOwnThread([] {
        const Pty device;
        Shown shown;
        shown.reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
        shown.form.Show();
        shown.turnToTheEnd();
        EXPECT_THAT(shown.rows(), IsEmpty());
        EXPECT_THAT(shown.form.Aids().portAdvice(), testing::Not(IsEmpty()));
        EXPECT_EQ(shown.form.Aids().portNumbers()[2].text, "Port 3");
        shown.form.Aids().assignPort("3", device.name());
        shown.turnToTheEnd();
        EXPECT_EQ(PortMap(platform().registry()).get(3), device.name());
        EXPECT_EQ(shown.form.cboPort.Text(), "3");
        EXPECT_EQ(shown.form.Aids().portNumbers()[2].text, "Port 3 (now " + fileName(device.name()) + ")");
        shown.form.cmdOK.Click();
        EXPECT_EQ(shown.reader.Port(), 3);
    });
}

TEST_F(PortsBesideTest, WithoutAViewThatTakesThemThePortsAreThereAtOnce)
{
    onItsOwnThread([] {
        const Pty device;
        map(6, device.name());
        clsKELReader reader;
        frmOptions form;
        form.SetReader(reader);
        form.Show();
        EXPECT_EQ(form.cboPort.RowCount(), 1);
        EXPECT_EQ(form.cboPort.Text(), "6");
        EXPECT_FALSE(form.Aids().looksAtPorts());
        EXPECT_FALSE(form.Aids().canLookAgain());
        EXPECT_FALSE(form.Aids().turn());
    });
}

} // namespace
} // namespace kel::test
