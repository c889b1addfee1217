// SPDX-License-Identifier: MIT
#pragma once

// All commands of the program, a line each: each is one file in commands/, with the function that is named here.
// clang-format off
#define KEL_COMMANDS(command)    \
    command(addModelsCommand)    \
    command(addModelCommand)     \
    command(addPortsCommand)     \
    command(addCheckCommand)     \
    command(addScanCommand)      \
    command(addStationCommand)   \
    command(addSheetsCommand)    \
    command(addCollectCommand)   \
    command(addFormCommand)      \
    command(addSimulateCommand)  \
    command(addSettingsCommand)  \
    command(addReplayCommand)    \
    command(addLocateCommand)    \
    command(addFirmwareCommand)  \
    command(addOptionsCommand)   \
    command(addHelpCommand)
// clang-format on

namespace kel {

class Commands;

#define KEL_DECLARE_COMMAND(add) void add(Commands& commands);
KEL_COMMANDS(KEL_DECLARE_COMMAND)
#undef KEL_DECLARE_COMMAND

} // namespace kel
