// SPDX-License-Identifier: MIT
#include "host/Form.h"
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "host/ModelLookup.h"
#include "host/TextOutput.h"
#include "pictures/SheetPicture.h"
#include "profiles/clsKELReaderProfiles.h"
#include "store/SheetRecords.h"
#include "types/Path.h"
#include "types/Text.h"

namespace kel {

namespace {

struct FormArguments {
    std::string formFile;
    std::string pictureFile;
    std::string model;
};

PictureForm formOf(const FormArguments& arguments)
{
    const host::Form form = host::readFormFile(pathOf(arguments.formFile));
    if (arguments.model.empty())
        return pictureForm(form);
    const kelReaderType model = host::modelNamed(arguments.model);
    return pictureForm(form, model, clsKELReaderProfiles().Item(CStr(model))->RecognitionThreshold());
}

std::string summaryOf(const PictureForm& form)
{
    std::string summary;
    for (const SideLayout& side : layoutOf(form).sides)
        summary += "Side " + CStr(side.side) + ": " + CStr(side.rows) + " rows, " + CStr(side.columns) + " columns\n";
    return summary + "Read windows: " + CStr(form.windows.size()) + "\nBarcode zones: " + CStr(form.barcodes.size()) +
           "\n";
}

int run(const FormArguments& arguments)
{
    const PictureForm form = formOf(arguments);
    if (!arguments.pictureFile.empty())
        host::TextOutput(pathOf(arguments.pictureFile)).writeOrFail(formPicture(form));
    host::TextOutput().writeOrFail(summaryOf(form));
    const std::vector<std::string> faults = faultsOfForm(form);
    for (const std::string& fault : faults)
        notice(fault);
    return faults.empty() ? kDoneStatus : kFailedStatus;
}

} // namespace

void addFormCommand(Commands& commands)
{
    const auto arguments = std::make_shared<FormArguments>();
    CLI::App& command =
        commands.add("form", "Checks a form file and describes it", [arguments] { return run(*arguments); });
    command.add_option("file", arguments->formFile, "Form of the sheets (JSON)")->required()->type_name("FILE");
    command
        .add_option("--picture", arguments->pictureFile,
                    "Draws the form as SVG: read windows with their cells in reading order, barcode zones")
        ->type_name("FILE.svg");
    command.add_option("--model", arguments->model, "Model that will read the form, by number or name");
    command.footer("Exit status: 0 all windows lie on the form, 1 at least one does not, 2 wrong usage.");
}

} // namespace kel
