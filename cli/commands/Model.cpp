// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/ModelTable.h"
#include "cli/ProfileRecord.h"
#include "host/ModelLookup.h"
#include "host/TextOutput.h"
#include "profiles/clsKELReaderProfiles.h"
#include "types/Text.h"

namespace kel {

namespace {

struct ModelArguments {
    std::string model;
    std::string format;
};

int run(const ModelArguments& arguments)
{
    const clsKELReaderProfiles profiles;
    const Reference<clsKELReaderProfile> profile = profiles.Item(CStr(host::modelNamed(arguments.model)));
    host::TextOutput output;
    if (arguments.format == "json")
        output.writeOrFail(jsonText(jsonRecord(*profile)) + "\n");
    else if (arguments.format == "csv")
        output.writeOrFail(modelsAsCsv({profile}));
    else
        output.writeOrFail(modelAsTable(*profile));
    return kDoneStatus;
}

} // namespace

void addModelCommand(Commands& commands)
{
    const auto arguments = std::make_shared<ModelArguments>();
    CLI::App& command =
        commands.add("model", "Shows all properties of one model", [arguments] { return run(*arguments); });
    command.add_option("model", arguments->model, "Model number, name, or part of the name")->required();
    addFormat(command, arguments->format, {"table", "json", "csv"});
}

} // namespace kel
