// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include "platform/FileDescriptor.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/PosixSerialControl.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "types/RuntimeFailure.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kel::test {

/// The run-time failure that a body ends with; nothing if it comes to its end.
template <class Body>
std::optional<RuntimeFailure> caught(Body&& body)
{
    try {
        body();
    } catch (const RuntimeFailure& failure) {
        return failure;
    }
    return std::nullopt;
}

/// Expects a failure of a number, with certain words in its text.
template <class Body>
void expectFailure(FailureCode code, const std::vector<std::string>& words, Body&& body)
{
    const std::optional<RuntimeFailure> failure = caught(std::forward<Body>(body));
    ASSERT_TRUE(failure) << "nothing failed";
    EXPECT_EQ(failure->number(), static_cast<Int32>(code)) << failure->text();
    EXPECT_EQ(failure->text().find(failureText(code)), 0U) << failure->text();
    for (const std::string& word : words)
        EXPECT_NE(failure->text().find(word), std::string::npos) << "no \"" << word << "\" in: " << failure->text();
}

/// A process of its own that runs a body and tells what that gives; it ends by itself or is killed with the object.
class OtherProcess {
public:
    explicit OtherProcess(const std::function<std::string()>& body)
    {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0)
            throw std::runtime_error("no pipe");
        process_ = ::fork();
        if (process_ == 0) {
            ::close(ends[0]);
            std::string answer;
            try {
                answer = body();
            } catch (const std::exception& failure) {
                answer = std::string("failed: ") + failure.what();
            }
            [[maybe_unused]] const ssize_t written = ::write(ends[1], answer.data(), answer.size());
            ::_exit(0);
        }
        ::close(ends[1]);
        answer_ = FileDescriptor(ends[0]);
    }
    ~OtherProcess() { kill(); }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    [[nodiscard]] pid_t number() const { return process_; }

    /// All that the process tells, up to its end.
    [[nodiscard]] std::string answer()
    {
        std::string text;
        std::array<char, 4096> part{};
        for (ssize_t count = 0;
             (count = retrying([&] { return ::read(answer_.number(), part.data(), part.size()); })) > 0;)
            text.append(part.data(), static_cast<std::size_t>(count));
        wait();
        return text;
    }

    void kill()
    {
        if (process_ > 0)
            ::kill(process_, SIGKILL);
        wait();
    }

private:
    void wait()
    {
        if (process_ > 0)
            retrying([&] { return ::waitpid(process_, nullptr, 0); });
        process_ = -1;
    }

    pid_t process_ = -1;
    FileDescriptor answer_;
};

/// Gives up the rights of root, if the process has them: for a body of another process.
inline void becomeOrdinaryUser()
{
    constexpr uid_t kNobody = 65534;
    if (::geteuid() != 0)
        return;
    if (::setgroups(0, nullptr) != 0 || ::setresgid(kNobody, kNobody, kNobody) != 0 ||
        ::setresuid(kNobody, kNobody, kNobody) != 0)
        throw std::runtime_error("still root");
}

/// A platform with a registry of its own.
class PosixTest : public ::testing::Test {
protected:
    PosixTest() : machine(RegistryFolders(folder.path() / "registry")) {}

    /// A control, closed, whose port 1 to 16 is a device.
    [[nodiscard]] std::unique_ptr<PosixSerialControl> control(const std::string& device, Int16 port = 1)
    {
        ports.push_back(std::make_unique<PortOverride>(port, device));
        auto made = std::make_unique<PosixSerialControl>(pump(), registry());
        made->CommPort(port);
        return made;
    }
    [[nodiscard]] std::unique_ptr<PosixSerialControl> openControl(const std::string& device, Int16 port = 1)
    {
        auto made = control(device, port);
        made->PortOpen(True);
        return made;
    }
    [[nodiscard]] std::unique_ptr<PosixSerialControl> openControl(const Pty& pty, Int16 port = 1)
    {
        return openControl(pty.name(), port);
    }

    [[nodiscard]] std::shared_ptr<PosixMessagePump> pump() { return {std::shared_ptr<void>(), &machine.pump()}; }
    [[nodiscard]] std::shared_ptr<Registry> registry() { return {std::shared_ptr<void>(), &machine.registry()}; }

    TemporaryFolder folder;
    PosixPlatform machine;
    std::vector<std::unique_ptr<PortOverride>> ports;
};

} // namespace kel::test
