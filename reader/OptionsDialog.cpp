// SPDX-License-Identifier: MIT
#include "reader/OptionsDialog.h"

#include "types/RuntimeFailure.h"

#include <atomic>

namespace kel {

namespace {

std::atomic<OptionsDialog> installed = nullptr;

} // namespace

void setOptionsDialog(OptionsDialog dialog)
{
    installed = dialog;
}

OptionsDialog optionsDialog()
{
    const OptionsDialog dialog = installed;
    if (!dialog)
        throw RuntimeFailure(FailureCode::ObjectNotSet, "No options dialog is installed.");
    return dialog;
}

} // namespace kel
