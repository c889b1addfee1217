// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/ModelTable.h"
#include "host/ModelLookup.h"
#include "host/TextOutput.h"
#include "profiles/clsKELReaderProfiles.h"

namespace kel {

namespace {

struct ModelsArguments {
    std::string maker;
    std::string format;
};

/// All records in the order of the catalogue; of one maker, its models alone.
ProfileList profilesOf(const std::string& maker)
{
    clsKELReaderProfiles profiles;
    if (!maker.empty())
        profiles.ProfileType(host::makerNamed(maker));
    ProfileList list;
    for (Int32 position = maker.empty() ? 1 : 2; position <= profiles.Count(); ++position)
        list.push_back(profiles.Item(position));
    return list;
}

int run(const ModelsArguments& arguments)
{
    const ProfileList profiles = profilesOf(arguments.maker);
    host::TextOutput output;
    if (arguments.format == "json")
        output.writeOrFail(modelsAsJson(profiles));
    else if (arguments.format == "csv")
        output.writeOrFail(modelsAsCsv(profiles));
    else
        output.writeOrFail(modelsAsTable(profiles));
    return kDoneStatus;
}

} // namespace

void addModelsCommand(Commands& commands)
{
    const auto arguments = std::make_shared<ModelsArguments>();
    CLI::App& command = commands.add("models", "Lists the supported models", [arguments] { return run(*arguments); });
    command.add_option("--maker", arguments->maker,
                       "Lists the models of one maker: apperson, chatsworth, pdi, scantron or sekonic");
    addFormat(command, arguments->format, {"table", "json", "csv"});
}

} // namespace kel
