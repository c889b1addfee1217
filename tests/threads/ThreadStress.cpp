// SPDX-License-Identifier: MIT
// A reader a thread, on many threads at once: sessions over pseudo-terminals, remote lines, and the store of settings.
// A program of its own, for the thread sanitizer: scripts/check-release.sh threads. Usage: kel_thread_stress [THREADS]

#include "failure/basError.h"
#include "platform/FileDescriptor.h"
#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "reader/clsKELReader.h"
#include "simulators/SimulatorTable.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace kel {
namespace {

constexpr Int32 kSheets = 3;
constexpr int kRounds = 3;
constexpr std::size_t kRemoteBytes = 2000;

std::atomic<int> sheets{0};
std::atomic<int> settings{0};
std::atomic<std::size_t> remoteBytes{0};
std::atomic<int> faults{0};

void fault(const std::string& text)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::cerr << text + "\n";
    ++faults;
}

/// Nobody's sessions have anything to report.
class Reports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        fault(report.ErrorSource + ": " + report.ErrorDescription);
        return 0;
    }
};

class SheetCount final : public ReaderEvents {
public:
    void BeforeSheet(Boolean&) override {}
    void ReadSheet(MarkArray&, MarkArray&, TextArray&, Boolean&) override { ++sheets; }
    void AfterSheet(Boolean&) override {}
    void BeforePrint(Boolean&) override {}
    void AfterPrint() override {}
    void TranslateData(Dictionary&, MarkArray&, MarkArray&, TextArray&, Boolean&) override {}
    void GetQuestionsOnPage(Int16&, Int16&) override {}
};

void readBatch(std::uint64_t seed)
{
    const FormDescription form{.side1Rows = {4}, .side1Cols = {48}, .side2Rows = {0}, .side2Cols = {0}};
    SimulatorOptions options{.model = kelReaderTypeScantronScanMark2500, .form = form, .rate = Rate::Unlimited};
    options.seeded = SeededSheets{seed, kSheets};
    const auto device = makeSimulator(kelReaderTypeScantronScanMark2500, std::move(options));
    PtyDeviceHost pty(*device, {.link = {}, .paceHost = false});
    const PortOverride line(1, pty.deviceFile());
    pty.start();
    clsKELReader reader;
    reader.Advise(std::make_shared<SheetCount>());
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.Port(1);
    reader.SleepTime(100); // 128 threads answer one another
    reader.Timeout(600);
    reader.RecognitionMode(kelRecognitionTypePage);
    reader.Side1Rows(PageArray::of(1, {4}));
    reader.Side1Cols(PageArray::of(1, {48}));
    reader.Side2Rows(PageArray::of(1, {0}));
    reader.Side2Cols(PageArray::of(1, {0}));
    Int32 count = 0;
    if (!reader.ReadBatch(False, kSheets, count))
        fault("a batch did not start");
    pty.stop();
    pty.join();
}

/// One key for all threads, and one for each.
void keepSettings(std::size_t thread)
{
    for (const std::string& key : {std::string("Software\\Shared"), "Software\\Own" + std::to_string(thread)}) {
        clsKELReader reader;
        reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
        reader.SaveSettings(kelReaderRegistryKeyCurrentUser, key);
        clsKELReader other;
        other.LoadSettings(kelReaderRegistryKeyCurrentUser, key);
        if (other.ReaderType() != kelReaderTypeScantronScanMark2500)
            fault("settings were lost in " + key);
        ++settings;
    }
}

/// A server on this machine that sends back what one caller sends.
class EchoServer {
public:
    EchoServer() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        ::bind(socket_.number(), reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(socket_.number(), 1);
        ::getsockname(socket_.number(), reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }
    ~EchoServer()
    {
        ::shutdown(socket_.number(), SHUT_RDWR);
        thread_.join();
    }
    EchoServer(const EchoServer&) = delete;
    EchoServer& operator=(const EchoServer&) = delete;

    [[nodiscard]] int port() const { return port_; }

private:
    void serve() const
    {
        const FileDescriptor caller(::accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC));
        std::array<char, 512> bytes{};
        for (ssize_t count = 0; (count = ::read(caller.number(), bytes.data(), bytes.size())) > 0;) {
            if (::write(caller.number(), bytes.data(), static_cast<std::size_t>(count)) != count)
                return;
        }
    }

    FileDescriptor socket_;
    int port_ = 0;
    std::thread thread_;
};

void talkToRemoteLine()
{
    const EchoServer server;
    const PortOverride device(2, "tcp:127.0.0.1:" + std::to_string(server.port()));
    const auto line = platform().newSerialControl();
    line->CommPort(2);
    line->PortOpen(True);
    line->Output(std::string(kRemoteBytes, 'x'));
    for (std::size_t count = 0; count < kRemoteBytes;) {
        DoEvents();
        const std::size_t taken = line->Input().size();
        count += taken;
        remoteBytes += taken;
    }
    line->PortOpen(False);
}

void work(std::size_t thread)
{
    try {
        const std::unique_ptr<Platform> machine = makePosixPlatform();
        const PlatformScope scope(*machine);
        for (int round = 0; round < kRounds; ++round) {
            readBatch(thread * kRounds + static_cast<std::size_t>(round));
            keepSettings(thread);
            talkToRemoteLine();
        }
    } catch (const std::exception& failure) {
        fault(failure.what());
    }
}

int run(std::size_t count)
{
    const std::filesystem::path store =
        std::filesystem::temp_directory_path() / ("kel-thread-stress-" + std::to_string(::getpid()));
    ::setenv("KELREADER_REGISTRY_DIR", store.c_str(), 1);
    setErrorObject(std::make_shared<Reports>());
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < count; ++thread)
        threads.emplace_back(work, thread);
    for (std::thread& thread : threads)
        thread.join();
    setErrorObject(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(store, ignored);
    std::cout << "  " << count << " threads: " << sheets << " sheets, " << settings << " settings kept and loaded, "
              << remoteBytes << " bytes over remote lines\n";
    const bool all = sheets == static_cast<int>(count) * kRounds * kSheets &&
                     remoteBytes == count * kRounds * kRemoteBytes && faults == 0;
    return all ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace kel

int main(int argc, char** argv)
{
    return kel::run(argc > 1 ? std::stoul(argv[1]) : 64);
}
