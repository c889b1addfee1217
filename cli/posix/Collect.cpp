// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/InterruptWatch.h"
#include "cli/Notice.h"
#include "host/UsageError.h"
#include "platform/posix/EventCall.h"
#include "station/ServiceNotice.h"
#include "store/ReaderSetup.h"
#include "stream/Collector.h"
#include "stream/StreamFiles.h"

#include <algorithm>
#include <poll.h>

namespace kel {

namespace {

struct CollectArguments {
    StreamAddress address;
    std::string storeFile;
    std::string durable = "kelreader-collect";
};

constexpr std::chrono::milliseconds kFirstPause{500};
constexpr std::chrono::milliseconds kLongestPause{30'000};

int run(const CollectArguments& arguments)
{
    StreamAddress address = arguments.address;
    address.client = "kelreader collect " + stationName();
    if (const std::string fault = faultOf(address); !fault.empty())
        throw host::UsageError(fault);
    StreamOpener& opener = streamOpener();
    EventCall interrupted;
    const InterruptWatch interrupt([&] { interrupted.call(); });
    SheetStore store(arguments.storeFile, "'kelreader collect'");
    const std::optional<std::chrono::milliseconds> watchdog = watchdogPeriod();
    std::chrono::steady_clock::time_point told; // the service manager
    const CollectorCalls calls{
        .tell = &notice, .pause = [&](std::chrono::milliseconds pause) {
            do {
                if (const auto now = std::chrono::steady_clock::now(); watchdog && now - told >= *watchdog / 2) {
                    feedWatchdog();
                    told = now;
                }
                const std::chrono::milliseconds step = watchdog ? std::min(pause, *watchdog) : pause;
                pollfd handle{interrupted.handle(), POLLIN, 0};
                retrying([&] { return ::poll(&handle, 1, static_cast<int>(step.count())); });
                pause -= step;
            } while (pause.count() > 0 && !InterruptNote::came());
            return !InterruptNote::came();
        }};
    tellServiceManager("READY=1");
    Collector(store, address, arguments.durable, Pauses(kFirstPause, kLongestPause), calls, opener).run();
    tellServiceManager("STOPPING=1");
    return kInterruptedStatus;
}

} // namespace

void addCollectCommand(Commands& commands)
{
    const auto arguments = std::make_shared<CollectArguments>();
    CLI::App& command = commands.add("collect", "Collects the sheets of many stations from a stream in one store",
                                     [arguments] { return run(*arguments); });
    // A service gives its options in the environment, where nobody else sees them.
    const auto add = [&](const char* option, const char* variable, auto& target, const char* type, const char* text) {
        return command.add_option(option, target, text)->type_name(type)->envname(variable);
    };
    StreamAddress& address = arguments->address;
    add("--from", "KELREADER_FROM", address.servers, "URL,...", "Servers of the stream; any one is enough")
        ->required()
        ->delimiter(',');
    add("--store", "KELREADER_STORE", arguments->storeFile, "FILE",
        "Store for the sheets; created if it does not exist")
        ->required();
    add("--stream", "KELREADER_STREAM", address.stream, "NAME", "Name of the stream")->capture_default_str();
    add("--subject", "KELREADER_SUBJECT", address.subject, "TEXT", "Beginning of the subjects of its messages")
        ->capture_default_str();
    add("--durable", "KELREADER_DURABLE", arguments->durable, "NAME",
        "Name by which the stream remembers what this collector has; a new name starts at the beginning")
        ->capture_default_str();
    add("--authority", "KELREADER_AUTHORITY", address.authority, "FILE",
        "Certificates of the authority that signed the servers' certificates; by default the system's");
    CLI::Option* certificate =
        add("--certificate", "KELREADER_CERTIFICATE", address.certificate, "FILE", "Certificate of the collector");
    CLI::Option* key = add("--key", "KELREADER_KEY", address.key, "FILE", "Key of the certificate");
    certificate->needs(key);
    key->needs(certificate);
    add("--credentials", "KELREADER_CREDENTIALS", address.credentials, "FILE",
        "Credentials file from the servers' administrator");
    command.footer(
        "The collector acknowledges a sheet when it is safe on the disk; a sheet that comes twice is one row. A "
        "message that cannot be read goes into the table 'unread' of the store. Ctrl-C and SIGTERM end the "
        "collector in order.\n"
        "Exit status: 130 ended, 1 the store cannot be written, 2 wrong usage.");
}

} // namespace kel
