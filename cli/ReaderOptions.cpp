// SPDX-License-Identifier: MIT
#include "cli/ReaderOptions.h"

namespace kel {

PortOptions addPort(CLI::App& command, std::optional<Int16>& port, std::string& device)
{
    PortOptions options{};
    options.port =
        command.add_option("--port", port, "Port number of the reader (see 'kelreader ports')")->type_name("N");
    options.device =
        command.add_option("--device", device, "Device of the reader, or a remote line such as rfc2217:HOST:PORT")
            ->type_name("PATH")
            ->excludes(options.port);
    return options;
}

CLI::Option* addUsbLibrary(CLI::App& command, std::string& file)
{
    return command.add_option("--omrapi", file, "OMRAPI library of the USB readers' maker, if not in the usual place")
        ->type_name("FILE");
}

void addAssignments(CLI::App& command, std::vector<std::string>& assignments, const std::string& description)
{
    command.add_option("--set", assignments, description)->type_name("Property=Value")->allow_extra_args(false);
}

} // namespace kel
