// SPDX-License-Identifier: MIT
#include "platform/FileDescriptor.h"
#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "tests/support/Patience.h"
#include "types/RuntimeFailure.h"

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>

// Lines behind a real ser2net, with a simulated device on a pseudo-terminal behind that.

extern char** environ;

namespace kel::test {
namespace {

using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr const char* kServer = "/usr/sbin/ser2net";

/// Sends back what it gets.
class EchoDevice final : public LineDevice {
public:
    void lineOpened(Moment, const LineParameters&) override {}
    void lineClosed(Moment) override {}
    void byteFromHost(Moment now, Byte byte) override { bytes_.push_back({now, byte}); }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return bytes_.empty() ? std::nullopt : std::optional(bytes_.front().first);
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        if (bytes_.empty() || bytes_.front().first > now)
            return std::nullopt;
        const Byte byte = bytes_.front().second;
        bytes_.pop_front();
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return false; }

private:
    std::deque<std::pair<Moment, Byte>> bytes_;
};

int freePort()
{
    const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ::bind(socket.number(), reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

/// Looks it up, since a connection would reach the server's device.
bool listening(int port)
{
    std::ostringstream wanted;
    wanted << ":" << std::hex << std::uppercase << port << " 00000000:0000 0A";
    std::ifstream table("/proc/net/tcp");
    std::stringstream text;
    text << table.rdbuf();
    return text.str().find(wanted.str()) != std::string::npos;
}

pid_t spawn(std::vector<std::string> words)
{
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = -1;
    if (::posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ) != 0)
        throw std::runtime_error("cannot run " + words[0]);
    ::posix_spawn_file_actions_destroy(&actions);
    return process;
}

class RemoteLineTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(std::filesystem::exists(kServer)) << "scripts/install-packages.sh installs ser2net";
        std::filesystem::create_directories(folder_);
        pty_.start();
    }

    ~RemoteLineTest() override
    {
        cut();
        pty_.stop();
        pty_.join();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    /// Starts the server; `layers` stand above TCP.
    void serve(const std::string& layers)
    {
        const std::filesystem::path file = folder_ / "ser2net.yaml";
        std::ofstream(file) << "%YAML 1.1\n---\nconnection: &line\n  accepter: " << layers << "tcp,127.0.0.1," << port_
                            << "\n  connector: serialdev," << pty_.deviceFile() << ",9600n81,local\n";
        server_ = spawn({kServer, "-d", "-c", file.string()});
        for (int i = 0; i < 500 && !listening(port_); ++i)
            std::this_thread::sleep_for(20ms);
        ASSERT_TRUE(listening(port_));
    }

    /// Ends the server without a farewell.
    void cut()
    {
        if (server_ <= 0)
            return;
        ::kill(server_, SIGKILL);
        ::waitpid(server_, nullptr, 0);
        server_ = -1;
    }

    [[nodiscard]] std::string place() const { return "127.0.0.1:" + std::to_string(port_); }

    void open(const std::string& device)
    {
        override_.emplace(Int16{1}, device);
        control_->CommPort(1);
        control_->PortOpen(True);
    }

    [[nodiscard]] RuntimeFailure failureOfOpening(const std::string& device)
    {
        try {
            open(device);
        } catch (const RuntimeFailure& failure) {
            return failure;
        }
        return {0, "none"};
    }

    /// Waits as a driver does, and takes all.
    std::string receive(Int32 count)
    {
        const Moment end = machine_.pump().now() + test::kPatience;
        while (control_->InBufferCount() < count && machine_.pump().now() < end)
            machine_.pump().DoEvents();
        return control_->Input();
    }

    /// To open the device and look would be an opening and a closing for the device.
    [[nodiscard]] LineParameters lineOfDevice() const { return pty_.line(); }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("kel-remote-line-" + std::to_string(::getpid()));
    EchoDevice echo_;
    PtyDeviceHost pty_{echo_};
    int port_ = freePort();
    pid_t server_ = -1;
    PosixPlatform machine_;
    std::unique_ptr<SerialControl> control_ = machine_.newSerialControl();
    std::optional<PortOverride> override_;
};

TEST_F(RemoteLineTest, Rfc2217CarriesBytesAndSettings)
{
    serve("telnet(rfc2217),");
    control_->Settings("19200,N,8,2");
    control_->Handshaking(1);
    open("rfc2217:" + place());
    EXPECT_EQ(lineOfDevice().baudRate, 19200);
    EXPECT_EQ(lineOfDevice().stopBits, 2);
    EXPECT_EQ(lineOfDevice().handshaking, 1);

    // All 256 of them: the protocol has a byte of its own among them.
    control_->Handshaking(0);
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    control_->Output(bytes);
    EXPECT_EQ(receive(256), bytes);

    control_->Settings("1200,N,8,1");
    EXPECT_EQ(lineOfDevice().baudRate, 1200);
    EXPECT_EQ(lineOfDevice().handshaking, 0);
}

TEST_F(RemoteLineTest, PlainTcpLeavesTheSettingsAlone)
{
    serve("");
    control_->Settings("19200,N,8,2");
    open("tcp:" + place());
    EXPECT_EQ(lineOfDevice().baudRate, 9600);
    control_->Output("abc");
    EXPECT_EQ(receive(3), "abc");
}

TEST_F(RemoteLineTest, ACutConnectionIsAHangUp)
{
    serve("telnet(rfc2217),");
    open("rfc2217:" + place());
    control_->Output("half a page");
    const Moment end = machine_.pump().now() + test::kPatience;
    while (control_->InBufferCount() < 11 && machine_.pump().now() < end)
        machine_.pump().DoEvents();
    cut();
    EXPECT_EQ(control_->Input(), "half a page");
    try {
        receive(1);
        FAIL() << "nothing happened";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.code(), FailureCode::ErrorReadingDevice);
        EXPECT_THAT(failure.text(), HasSubstr("Port 1 (rfc2217:" + place() + ") has hung up"));
    }
    EXPECT_LT(machine_.pump().now(), end);
    EXPECT_THROW(control_->Output("x"), RuntimeFailure);
    control_->PortOpen(False);
}

TEST_F(RemoteLineTest, WhatWasSentBeforeClosingStillLeaves)
{
    serve("");
    for (const std::string text : {"first", "second"}) {
        // The server takes the next caller once it has let go of the last one.
        for (int tries = 0; !control_->PortOpen() && tries < 100; ++tries) {
            if (failureOfOpening("tcp:" + place()).number() != 0)
                std::this_thread::sleep_for(20ms);
        }
        control_->Output(text);
        EXPECT_EQ(receive(static_cast<Int32>(text.size())), text);
        control_->PortOpen(False);
        std::this_thread::sleep_for(100ms);
    }
}

TEST_F(RemoteLineTest, NobodyThereIsNotAvailable)
{
    const RuntimeFailure failure = failureOfOpening("rfc2217:" + place());
    EXPECT_EQ(failure.code(), FailureCode::HardwareNotAvailable);
    EXPECT_THAT(failure.text(),
                HasSubstr("Port 1 (rfc2217:" + place() + ") cannot be reached: the connection was refused."));
    EXPECT_FALSE(control_->PortOpen());
}

TEST_F(RemoteLineTest, ABadAddressIsNoPort)
{
    for (const char* device : {"tcp:nowhere", "tcp:a host:1", "gensio:nonsense,1", "gensio:"})
        EXPECT_EQ(failureOfOpening(device).code(), FailureCode::InvalidPortNumber) << device;
}

TEST_F(RemoteLineTest, AServerWithoutSettingsIsRefused)
{
    serve("telnet,");
    const RuntimeFailure failure = failureOfOpening("rfc2217:" + place());
    EXPECT_EQ(failure.code(), FailureCode::CannotSetLineState) << failure.text();
    EXPECT_FALSE(control_->PortOpen());
}

TEST_F(RemoteLineTest, TlsTrustsTheCertificateThatItIsGiven)
{
    const std::string key = (folder_ / "key.pem").string();
    const std::string certificate = (folder_ / "certificate.pem").string();
    const pid_t maker = spawn({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1", "-subj",
                               "/CN=localhost", "-keyout", key, "-out", certificate});
    int status = -1;
    ::waitpid(maker, &status, 0);
    ASSERT_EQ(status, 0);
    serve("telnet(rfc2217),ssl(key=" + key + ",cert=" + certificate + "),");

    const RuntimeFailure untrusted = failureOfOpening("rfc2217s:" + place());
    EXPECT_EQ(untrusted.code(), FailureCode::HardwareNotAvailable);
    EXPECT_THAT(untrusted.text(), HasSubstr("certificate"));

    RuntimeFailure failure(0, "");
    for (int tries = 0; !control_->PortOpen() && tries < 50; ++tries) {
        failure = failureOfOpening("gensio:telnet(rfc2217=true),ssl(CA=" + certificate + "),tcp,127.0.0.1," +
                                   std::to_string(port_));
        if (!control_->PortOpen())
            std::this_thread::sleep_for(100ms);
    }
    ASSERT_TRUE(control_->PortOpen()) << failure.text();
    control_->Settings("19200,N,8,1");
    EXPECT_EQ(lineOfDevice().baudRate, 19200);
    control_->Output("secret");
    EXPECT_EQ(receive(6), "secret");
}

} // namespace
} // namespace kel::test
