// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/InterruptWatch.h"
#include "host/UsageError.h"
#include "platform/posix/EventCall.h"
#include "store/ReaderSetup.h"
#include "stream/Collector.h"
#include "stream/StreamFiles.h"

#include <iostream>
#include <poll.h>

namespace kel {

namespace {

struct Arguments {
    StreamAddress address;
    std::string storeFile;
    std::string durable = "kelreader-collect";
};

constexpr std::chrono::milliseconds kFirstPause{500};
constexpr std::chrono::milliseconds kLongestPause{30'000};

int run(const Arguments& arguments)
{
    StreamAddress address = arguments.address;
    address.client = "kelreader collect " + stationName();
    if (const std::string fault = faultOf(address); !fault.empty())
        throw host::UsageError(fault);
    StreamOpener& opener = streamOpener();
    EventCall interrupted;
    const InterruptWatch interrupt([&] { interrupted.call(); });
    SheetStore store(arguments.storeFile, "'kelreader collect'");
    const CollectorCalls calls{
        .tell = [](const std::string& sentence) { std::cerr << "kelreader: " << sentence << std::endl; },
        .pause =
            [&](std::chrono::milliseconds pause) {
                pollfd handle{interrupted.handle(), POLLIN, 0};
                retrying([&] { return ::poll(&handle, 1, static_cast<int>(pause.count())); });
                return !InterruptNote::came();
            }};
    Collector(store, address, arguments.durable, Pauses(kFirstPause, kLongestPause), calls, opener).run();
    return kInterruptedStatus;
}

} // namespace

void addCollectCommand(Commands& commands)
{
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command = commands.add("collect", "Takes the sheets of many stations from a stream into a store",
                                     [arguments] { return run(*arguments); });
    StreamAddress& address = arguments->address;
    command.add_option("--from", address.servers, "Servers of the stream, any of which will do")
        ->required()
        ->delimiter(',')
        ->type_name("URL,...");
    command.add_option("--store", arguments->storeFile, "The store that takes them; it is made if there is none")
        ->required()
        ->type_name("FILE");
    command.add_option("--stream", address.stream, "The stream's name")->type_name("NAME")->capture_default_str();
    command.add_option("--subject", address.subject, "What the subjects of its messages begin with")
        ->type_name("TEXT")
        ->capture_default_str();
    command
        .add_option("--durable", arguments->durable,
                    "The name by which the stream remembers what this collector has; another name begins anew")
        ->type_name("NAME")
        ->capture_default_str();
    command.add_option("--authority", address.authority, "Certificates that the servers' are checked against")
        ->type_name("FILE");
    CLI::Option* certificate =
        command.add_option("--certificate", address.certificate, "The certificate of this side")->type_name("FILE");
    CLI::Option* key = command.add_option("--key", address.key, "Its key")->type_name("FILE");
    certificate->needs(key);
    key->needs(certificate);
    command.add_option("--credentials", address.credentials, "Who this side is, as the administrator gave it out")
        ->type_name("FILE");
    command.footer("A sheet is acknowledged when it is safe on the disk; one that comes twice is one row. A message "
                   "that cannot be "
                   "read goes into the table 'unread' of the store. Ctrl-C and SIGTERM end it in order.\n"
                   "Exit status: 130 ended, 1 the store cannot be written, 2 wrong usage.");
}

} // namespace kel
